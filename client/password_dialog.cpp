#include "client/password_dialog.h"

#include "client/connections.h"
#include "client/login_dialog.h"
#include "platform/toolkit/exception.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/plain_text.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>

using namespace platform;

namespace client {

PasswordDialog::PasswordDialog(Connections &connections, const std::optional<QString> &before, QWidget *parent)
    : QDialog(parent)
    , m_connections(connections)
    , m_before(addField())
    , m_after(addField())
    , m_again(addField())
    , m_refusal(refusalLabel(this))
{
    setWindowTitle(QStringLiteral("修改密码"));
    auto *const form = new QFormLayout(this);
    form->addRow(QStringLiteral("用户"), plainLabel(connections.user(), this));
    if (before)
        form->addRow(plainLabel(QStringLiteral("首次登录须先修改密码。"), this));
    else
        form->addRow(QStringLiteral("原密码"), m_before);
    form->addRow(QStringLiteral("新密码（至少 8 位）"), m_after);
    form->addRow(QStringLiteral("再输入一次"), m_again);
    form->addRow(m_refusal);
    auto *const buttons = new QDialogButtonBox(this);
    buttons->addButton(QStringLiteral("修改"), QDialogButtonBox::AcceptRole);
    buttons->addButton(QStringLiteral("取消"), QDialogButtonBox::RejectRole);
    form->addRow(buttons);
    handle(buttons, &QDialogButtonBox::accepted, this, &PasswordDialog::tryChange);
    handle(buttons, &QDialogButtonBox::rejected, this, [this] { reject(); });
    m_before->setText(before.value_or(QString()));
    m_before->setVisible(!before);
    (before ? m_after : m_before)->setFocus();
    setMinimumWidth(400);
}

QLineEdit *PasswordDialog::addField()
{
    auto *const field = new QLineEdit(this);
    field->setEchoMode(QLineEdit::Password);
    return field;
}

void PasswordDialog::tryChange()
{
    if (m_after->text() != m_again->text())
        return refuse(QStringLiteral("两次输入的新密码不同，请重新输入。"), m_again);
    try {
        m_connections.changePassword(m_before->text(), m_after->text());
        accept();
    } catch (const Exception &exception) {
        refuse(exception.message(), m_before->isVisibleTo(this) ? m_before : m_after);
    }
}

void PasswordDialog::refuse(const QString &message, QLineEdit *field)
{
    showRefusal(m_refusal, message);
    field->selectAll();
    field->setFocus();
}

} // namespace client
