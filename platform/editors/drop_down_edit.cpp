#include "platform/editors/drop_down_edit.h"

#include "platform/toolkit/handler.h"

#include <QKeyEvent>
#include <QScreen>
#include <QStyleOption>
#include <QStylePainter>
#include <QToolButton>
#include <QtMath>

#include <algorithm>

namespace platform {

namespace {

constexpr int buttonWidth = 18;
constexpr int arrowWidth = 22;

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

/// An editable combo box as large as the line of text.
QStyleOptionComboBox editableCombo(const QWidget *line)
{
    QStyleOptionComboBox option;
    option.initFrom(line);
    option.editable = true;
    option.frame = true;
    option.subControls = QStyle::SC_ComboBoxFrame | QStyle::SC_ComboBoxArrow;
    return option;
}

/// The right end of a combo box, in every style what the style makes of it.
class ArrowButton : public QToolButton {
public:
    using QToolButton::QToolButton;

protected:
    void paintEvent(QPaintEvent *) override
    {
        QStyleOptionComboBox option = editableCombo(parentWidget());
        option.activeSubControls = underMouse() || isDown() ? QStyle::SC_ComboBoxArrow : QStyle::SC_None;
        option.state.setFlag(QStyle::State_Sunken, isDown());
        option.state.setFlag(QStyle::State_MouseOver, underMouse());
        QStylePainter painter(this);
        painter.translate(-x(), -y());
        painter.drawComplexControl(QStyle::CC_ComboBox, option);
    }
};

} // namespace

DropDownEdit::DropDownEdit(QWidget *parent)
    : QLineEdit(parent)
{
    auto *button = new ArrowButton(this);
    insertButton(button);
    handle(button, &QToolButton::clicked, this, &DropDownEdit::dropDown);
    // What nobody is typing in shows its beginning.
    handle(this, &QLineEdit::textChanged, this, [this] {
        if (!hasFocus())
            home(false);
    });
}

QSize DropDownEdit::sizeHint() const { return { QLineEdit::sizeHint().width(), comboHeight() }; }

QSize DropDownEdit::minimumSizeHint() const { return { QLineEdit::minimumSizeHint().width(), comboHeight() }; }

int DropDownEdit::comboHeight() const
{
    const QStyleOptionComboBox option = editableCombo(this);
    const QSize contents(0, std::max(qCeil(QFontMetricsF(font()).height()), 14) + 2);
    return style()->sizeFromContents(QStyle::CT_ComboBox, &option, contents, this).height();
}

void DropDownEdit::insertButton(QToolButton *button)
{
    button->setFocusPolicy(Qt::NoFocus);
    button->setCursor(Qt::ArrowCursor);
    handle(button, &QToolButton::pressed, this, [this] { setFocus(Qt::MouseFocusReason); });
    m_buttons.append(button);
    setTextMargins(1, 0, arrowWidth + (int(m_buttons.size()) - 1) * buttonWidth, 0);
}

QToolButton *DropDownEdit::addButton(const QString &text, const QString &toolTip)
{
    auto *button = new QToolButton(this);
    button->setAutoRaise(true);
    button->setText(text);
    button->setToolTip(toolTip);
    button->setAccessibleName(toolTip);
    insertButton(button);
    return button;
}

void DropDownEdit::setDropDownToolTip(const QString &toolTip)
{
    m_buttons.first()->setToolTip(toolTip);
    m_buttons.first()->setAccessibleName(toolTip);
}

QRect DropDownEdit::dropDownGeometry(const QSize &size) const
{
    const QRect room = screen()->availableGeometry();
    const QRect line(mapToGlobal(QPoint(0, 0)), this->size());
    const int below = room.bottom() - line.bottom();
    const int above = line.top() - room.top();
    const bool up = size.height() > below && above > below;
    const QSize fitting(std::min(size.width(), room.width()), std::min(size.height(), up ? above : below));
    const int left = std::clamp(line.left(), room.left(), room.right() + 1 - fitting.width());
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
    home(false);
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
    m_buttons.first()->setGeometry(width() - arrowWidth, 0, arrowWidth, height());
    QRect place(width() - arrowWidth, frame, buttonWidth, height() - 2 * frame);
    for (QToolButton *button : m_buttons.mid(1)) {
        place.translate(-buttonWidth, 0);
        button->setGeometry(place);
    }
}

bool isDropDownKey(const QKeyEvent &event)
{
    const bool vertical = event.key() == Qt::Key_Down || event.key() == Qt::Key_Up;
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    return (event.key() == Qt::Key_F4 && modifiers == Qt::NoModifier) || (vertical && modifiers == Qt::AltModifier);
}

} // namespace platform
