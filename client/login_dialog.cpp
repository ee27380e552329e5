#include "client/login_dialog.h"

#include "client/connections.h"
#include "platform/grid/grid_colors.h"
#include "platform/toolkit/exception.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/plain_text.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using namespace platform;

namespace client {

LoginDialog::LoginDialog(Connections &connections, const QString &user, QWidget *parent)
    : QDialog(parent)
    , m_connections(connections)
    , m_user(new QLineEdit(user, this))
    , m_password(new QLineEdit(this))
    , m_refusal(plainLabel({}, this))
{
    setWindowTitle(QStringLiteral("登录"));
    m_password->setEchoMode(QLineEdit::Password);
    m_refusal->setWordWrap(true);
    m_refusal->setStyleSheet(u"color: " + platform::alarmColorOn(palette()).name());
    m_refusal->hide();
    auto *const place = plainLabel(connections.place(), this);
    auto *const buttons = new QDialogButtonBox(this);
    m_login = buttons->addButton(QStringLiteral("登录"), QDialogButtonBox::AcceptRole);
    buttons->addButton(QStringLiteral("退出"), QDialogButtonBox::RejectRole);
    auto *const form = new QFormLayout(this);
    form->addRow(QStringLiteral("服务器"), place);
    form->addRow(QStringLiteral("用户"), m_user);
    form->addRow(QStringLiteral("密码"), m_password);
    form->addRow(m_refusal);
    form->addRow(buttons);
    handle(buttons, &QDialogButtonBox::accepted, this, &LoginDialog::tryLogin);
    handle(buttons, &QDialogButtonBox::rejected, this, [this] { reject(); });
    handle(m_user, &QLineEdit::textChanged, this, &LoginDialog::updateButton);
    handle(m_password, &QLineEdit::textChanged, this, &LoginDialog::updateButton);
    setMinimumWidth(400);
    updateButton();
    (user.isEmpty() ? m_user : m_password)->setFocus();
}

void LoginDialog::updateButton() { m_login->setEnabled(!m_user->text().trimmed().isEmpty() && !m_password->text().isEmpty()); }

void LoginDialog::tryLogin()
{
    try {
        m_connections.login(m_user->text().trimmed(), m_password->text());
        accept();
    } catch (const Exception &exception) {
        m_refusal->setText(exception.message());
        m_refusal->show();
        // A label that wraps tells its height only for a width.
        m_refusal->setMinimumHeight(m_refusal->heightForWidth(layout()->contentsRect().width()));
        adjustSize();
        m_password->selectAll();
        m_password->setFocus();
    }
}

} // namespace client
