#include "client/login_dialog.h"

#include "client/connections.h"
#include "client/password_dialog.h"
#include "platform/grid/grid_colors.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/exception.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/plain_text.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>

using namespace platform;

namespace client {

QLabel *refusalLabel(QWidget *parent)
{
    QLabel *label = plainLabel({}, parent);
    label->setWordWrap(true);
    label->setStyleSheet(u"color: " + platform::alarmColorOn(label->palette()).name());
    label->hide();
    return label;
}

void showRefusal(QLabel *label, const QString &reason)
{
    QWidget *const dialog = label->parentWidget();
    label->setText(reason);
    label->show();
    // A label that wraps tells its height only for a width.
    label->setMinimumHeight(label->heightForWidth(dialog->layout()->contentsRect().width()));
    dialog->adjustSize();
}

LoginDialog::LoginDialog(Connections &connections, const QString &user, QWidget *parent)
    : QDialog(parent)
    , m_connections(&connections)
    , m_place(plainLabel(connections.place(), this))
    , m_user(new QLineEdit(user, this))
    , m_password(new QLineEdit(this))
    , m_refusal(refusalLabel(this))
{
    setWindowTitle(QStringLiteral("登录"));
    m_password->setEchoMode(QLineEdit::Password);
    auto *const buttons = new QDialogButtonBox(this);
    m_login = buttons->addButton(QStringLiteral("登录"), QDialogButtonBox::AcceptRole);
    m_leave = buttons->addButton(QStringLiteral("退出"), QDialogButtonBox::RejectRole);
    m_form = new QFormLayout(this);
    m_form->addRow(QStringLiteral("服务器"), m_place);
    m_form->addRow(QStringLiteral("用户"), m_user);
    m_form->addRow(QStringLiteral("密码"), m_password);
    m_form->addRow(m_refusal);
    m_form->addRow(buttons);
    handle(buttons, &QDialogButtonBox::accepted, this, &LoginDialog::tryLogin);
    handle(buttons, &QDialogButtonBox::rejected, this, [this] { reject(); });
    handle(m_user, &QLineEdit::textChanged, this, &LoginDialog::updateButton);
    handle(m_password, &QLineEdit::textChanged, this, &LoginDialog::updateButton);
    setMinimumWidth(400);
    updateButton();
    (user.isEmpty() ? m_user : m_password)->setFocus();
}

void LoginDialog::updateButton()
{
    const bool hasServer = !m_servers || !m_servers->text().trimmed().isEmpty();
    m_login->setEnabled(hasServer && !m_user->text().trimmed().isEmpty() && !m_password->text().isEmpty());
}

void LoginDialog::offerServers(Prepare prepare)
{
    m_prepare = std::move(prepare);
    m_servers = new QLineEdit(m_connections->place(), this);
    m_servers->setPlaceholderText(QStringLiteral("中心给的地址，如 https://center:8866"));
    m_form->setRowVisible(m_place, false);
    m_form->insertRow(0, QStringLiteral("服务器"), m_servers);
    setTabOrder(m_servers, m_user);
    handle(m_servers, &QLineEdit::textChanged, this, &LoginDialog::updateButton);
    if (m_servers->text().isEmpty())
        m_servers->setFocus();
    updateButton();
}

/// Other servers than before get connections of their own.
void LoginDialog::takeServers()
{
    if (!m_servers || m_servers->text().trimmed() == m_connections->place())
        return;
    static const QRegularExpression separators(QStringLiteral("[,，、;；\\s]+"));
    m_named = m_prepare(m_servers->text().split(separators, Qt::SkipEmptyParts));
    m_connections = m_named.get();
}

void LoginDialog::useKeyring(const Keyring &keyring)
{
    int row = 0;
    QFormLayout::ItemRole role {};
    m_form->getWidgetPosition(m_password, &row, &role);
    m_keyring = keyring;
    m_keeps = new QCheckBox(QStringLiteral("记住密码（保存在系统的密钥环中）"), this);
    m_form->insertRow(row + 1, QString(), m_keeps);
    setTabOrder(m_password, m_keeps);
    if (m_user->text().isEmpty())
        return;
    m_password->setText(keyring.password(m_connections->place(), m_user->text()));
    m_keeps->setChecked(!m_password->text().isEmpty());
}

void LoginDialog::keepPassword(const QString &password)
{
    if (!m_keeps)
        return;
    if (m_keeps->isChecked())
        m_keyring->remember(m_connections->place(), m_connections->user(), password);
    else
        m_keyring->forget(m_connections->place(), m_connections->user());
}

void LoginDialog::askAgain(const QString &why)
{
    m_ownerOfScreens = m_user->text();
    m_leave->setText(QStringLiteral("取消"));
    showRefusal(m_refusal, why);
}

bool LoginDialog::mayCloseScreens()
{
    const QString user = m_user->text().trimmed();
    if (m_ownerOfScreens.isEmpty() || user == m_ownerOfScreens)
        return true;
    const QString question = QStringLiteral("打开的窗口属于“%1”，以“%2”登录会把它们全部关闭。要继续吗？").arg(m_ownerOfScreens, user);
    return Application->messageBox(question, windowTitle(), mbOkCancel | mbIconQuestion | mbDefaultButton2) == idOk;
}

void LoginDialog::tryLogin()
{
    if (!mayCloseScreens())
        return;
    try {
        takeServers();
        m_connections->login(m_user->text().trimmed(), m_password->text());
        if (!m_connections->account()->mustChangePassword)
            keepPassword(m_password->text());
        else if (PasswordDialog(*m_connections, m_password->text(), this).exec() != Accepted)
            throw Exception(QStringLiteral("须先修改密码，才能继续使用。"));
        m_password->clear();
        accept();
    } catch (const Exception &exception) {
        showRefusal(m_refusal, exception.message());
        m_password->selectAll();
        m_password->setFocus();
    }
}

} // namespace client
