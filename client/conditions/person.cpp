#include "client/conditions/person.h"

#include "platform/editors/editors.h"
#include "platform/toolkit/exception.h"
#include "platform/toolkit/form.h"
#include "platform/toolkit/radio_group.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QPlainTextEdit>

namespace client {
namespace {

QWidget *focusTarget(QWidget *control) { return control->focusProxy() ? focusTarget(control->focusProxy()) : control; }

const QWidget *formOf(const QWidget *control)
{
    while (control->parentWidget() && !qobject_cast<const TForm *>(control))
        control = control->parentWidget();
    return control;
}

bool takesTab(const QWidget *widget)
{
    return widget->focusPolicy() & Qt::TabFocus && widget->isEnabled() && widget->isVisible() && !widget->focusProxy();
}

void typeLine(QLineEdit *line, const QString &text)
{
    if (line->isReadOnly())
        throw Exception(QStringLiteral("控件“%1”是只读的").arg(line->objectName()));
    line->selectAll();
    if (text.isEmpty())
        line->del();
    else
        line->insert(text);
}

QString keyText(QKeyCombination key)
{
    if (key.keyboardModifiers() & (Qt::ControlModifier | Qt::AltModifier))
        return {};
    switch (key.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return QStringLiteral("\r");
    case Qt::Key_Tab:
        return QStringLiteral("\t");
    case Qt::Key_Backspace:
        return QStringLiteral("\b");
    default:
        break;
    }
    if (int(key.key()) > int(QChar::LastValidCodePoint))
        return {};
    const QString letter(QChar(char16_t(key.key())));
    return key.keyboardModifiers() & Qt::ShiftModifier ? letter : letter.toLower();
}

QAction *shortcutAction(const QWidget *window, QKeyCombination key)
{
    for (QAction *action : window->findChildren<QAction *>()) {
        if (action->isEnabled() && action->shortcuts().contains(QKeySequence(key)))
            return action;
    }
    return nullptr;
}

} // namespace

void person::enter(QWidget *control)
{
    if (!control->isEnabled())
        throw Exception(QStringLiteral("控件“%1”不可用").arg(control->objectName()));
    if (!control->isVisible())
        throw Exception(QStringLiteral("控件“%1”不可见").arg(control->objectName()));
    focusTarget(control)->setFocus(Qt::TabFocusReason);
}

void person::leave(QWidget *control)
{
    const QWidget *form = formOf(control);
    QWidget *next = control->nextInFocusChain();
    while (next != control && (!takesTab(next) || !form->isAncestorOf(next) || control->isAncestorOf(next)))
        next = next->nextInFocusChain();
    if (next == control)
        focusTarget(control)->clearFocus();
    else
        next->setFocus(Qt::OtherFocusReason); // not Tab, which takes what a list offers in place of the text
}

void person::type(QWidget *control, const QString &text)
{
    if (auto *line = qobject_cast<QLineEdit *>(control))
        return typeLine(line, text);
    if (auto *combo = qobject_cast<QComboBox *>(control); combo && combo->lineEdit())
        return typeLine(combo->lineEdit(), text);
    auto *memo = qobject_cast<QPlainTextEdit *>(control);
    if (!memo || memo->isReadOnly())
        throw Exception(QStringLiteral("控件“%1”里不能输入文字").arg(control->objectName()));
    memo->selectAll();
    memo->insertPlainText(text);
}

void person::choose(QWidget *control, int index)
{
    if (const auto *group = qobject_cast<TRadioGroup *>(control)) {
        QAbstractButton *button = group->button(index);
        if (!button)
            throw Exception(QStringLiteral("“%1”没有第 %2 项").arg(control->objectName()).arg(index));
        return press(button);
    }
    auto *combo = qobject_cast<TDBComboBoxEh *>(control);
    if (!combo)
        throw Exception(QStringLiteral("控件“%1”没有下拉列表").arg(control->objectName()));
    if (index < -1 || index >= combo->count())
        throw Exception(QStringLiteral("控件“%1”的列表没有第 %2 项").arg(control->objectName()).arg(index));
    combo->setItemIndex(index);
    Q_EMIT combo->activated(index);
}

void person::press(QAbstractButton *button)
{
    if (!button->isEnabled())
        throw Exception(QStringLiteral("按钮“%1”不可用").arg(button->objectName()));
    if (button->isVisible() && button->focusPolicy() & Qt::ClickFocus)
        button->setFocus(Qt::MouseFocusReason);
    button->click();
}

void person::pressKey(QWidget *control, QKeyCombination key)
{
    // What has dropped down from the control gets its keys first.
    const QPointer<QWidget> target = QApplication::activePopupWidget() ? QApplication::activePopupWidget() : focusTarget(control);
    const QString text = keyText(key);
    QKeyEvent claim(QEvent::ShortcutOverride, key.key(), key.keyboardModifiers(), text);
    claim.ignore();
    QApplication::sendEvent(target, &claim);
    if (QAction *action = claim.isAccepted() ? nullptr : shortcutAction(control->window(), key))
        return action->trigger();
    for (const QEvent::Type type : { QEvent::KeyPress, QEvent::KeyRelease }) {
        QKeyEvent event(type, key.key(), key.keyboardModifiers(), text);
        if (target)
            QApplication::sendEvent(target, &event);
    }
}

} // namespace client
