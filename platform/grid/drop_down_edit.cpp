#include "platform/grid/drop_down_edit.h"

#include "platform/toolkit/handler.h"

#include <QKeyEvent>
#include <QScreen>
#include <QStyle>
#include <QToolButton>

namespace {

constexpr int buttonWidth = 18;

bool belongsToInputMethod(int key)
{
    switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
    case Qt::Key_Escape:
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        return true;
    default:
        return false;
    }
}

} // namespace

DropDownEdit::DropDownEdit(QWidget *parent) : QLineEdit(parent) { }

QToolButton *DropDownEdit::addButton(const QString &toolTip)
{
    auto *button = new QToolButton(this);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::NoFocus);
    button->setCursor(Qt::ArrowCursor);
    button->setToolTip(toolTip);
    handle(button, &QToolButton::pressed, this, [this] { setFocus(Qt::MouseFocusReason); });
    m_buttons.append(button);
    setTextMargins(0, 0, int(m_buttons.size()) * buttonWidth, 0);
    return button;
}

QToolButton *DropDownEdit::addDropDownButton(const QString &toolTip)
{
    QToolButton *button = addButton(toolTip);
    button->setArrowType(Qt::DownArrow);
    handle(button, &QToolButton::clicked, this, &DropDownEdit::dropDown);
    return button;
}

QRect DropDownEdit::dropDownGeometry(const QSize &size) const
{
    const QRect room = screen()->availableGeometry();
    const QRect line(mapToGlobal(QPoint(0, 0)), this->size());
    const int below = room.bottom() - line.bottom();
    const int above = line.top() - room.top();
    const bool up = size.height() > below && above > below;
    const QSize fitting(qMin(size.width(), room.width()), qMin(size.height(), up ? above : below));
    const int left = qBound(room.left(), line.left(), room.right() + 1 - fitting.width());
    return { QPoint(left, up ? line.top() - fitting.height() : line.bottom() + 1), fitting };
}

bool DropDownEdit::event(QEvent *event)
{
    const bool isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride;
    if (isKey && m_composing && belongsToInputMethod(static_cast<QKeyEvent *>(event)->key())) {
        event->accept();
        return true;
    }
    return QLineEdit::event(event);
}

void DropDownEdit::focusOutEvent(QFocusEvent *event)
{
    QLineEdit::focusOutEvent(event);
    m_composing = false;
    const Qt::FocusReason reason = event->reason();
    // A line that has just been hidden, with its form perhaps, was not left by a person.
    if (reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason || reason == Qt::MenuBarFocusReason || !isVisible())
        return;
    guarded([this] { finishEntry(); });
    Q_EMIT exited();
}

void DropDownEdit::inputMethodEvent(QInputMethodEvent *event)
{
    m_composing = !event->preeditString().isEmpty();
    QLineEdit::inputMethodEvent(event);
}

void DropDownEdit::keyPressEvent(QKeyEvent *event)
{
    if (isDropDownKey(*event))
        guarded([this] { dropDown(); });
    else
        QLineEdit::keyPressEvent(event);
}

void DropDownEdit::resizeEvent(QResizeEvent *event)
{
    QLineEdit::resizeEvent(event);
    const int frame = style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, this);
    QRect place(width() - frame - int(m_buttons.size()) * buttonWidth, frame, buttonWidth, height() - 2 * frame);
    for (QToolButton *button : m_buttons) {
        button->setGeometry(place);
        place.translate(buttonWidth, 0);
    }
}

bool isDropDownKey(const QKeyEvent &event)
{
    const bool vertical = event.key() == Qt::Key_Down || event.key() == Qt::Key_Up;
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    return (event.key() == Qt::Key_F4 && modifiers == Qt::NoModifier) || (vertical && modifiers == Qt::AltModifier);
}
