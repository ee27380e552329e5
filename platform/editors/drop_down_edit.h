#pragma once

#include <QLineEdit>
#include <QList>

class QToolButton;

namespace platform {

/// A line of text with buttons at its right end, from which something drops down (F4, Alt+Down or a button). Knows when a
/// person leaves it, and leaves the keys of an input method to it while it composes. Enter goes on to the form.
class DropDownEdit : public QLineEdit {
    Q_OBJECT

public:
    explicit DropDownEdit(QWidget *parent = nullptr);

    /// As high as a combo box, so that conditions of all kinds stand in line.
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The focus left for another control of the program's window, not for another window, a menu or the own drop-down.
    void exited();

protected:
    /// Adds a button beside the drop-down button; a press takes the focus into the line.
    QToolButton *addButton(const QString &text, const QString &toolTip);
    void setDropDownToolTip(const QString &toolTip);
    bool isComposing() const { return m_composing; }
    virtual void dropDown() = 0;
    /// Runs when a person leaves the line, before exited().
    virtual void finishEntry() { }
    /// Where a window as large as `size` drops down: below the line, above it where there is more room, on its screen.
    QRect dropDownGeometry(const QSize &size) const;

    bool event(QEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void insertButton(QToolButton *button);
    int comboHeight() const;

    QList<QToolButton *> m_buttons; ///< from the right, the drop-down button first
    bool m_composing = false;
};

/// F4, Alt+Down and Alt+Up open and close whatever drops down.
bool isDropDownKey(const QKeyEvent &event);

} // namespace platform
