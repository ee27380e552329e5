#pragma once

#include <QButtonGroup>
#include <QGroupBox>

/// A titled box of choices, of which one at most is chosen.
class TRadioGroup : public QGroupBox {
    Q_OBJECT

public:
    explicit TRadioGroup(QWidget *parent = nullptr);

    void setItems(const QStringList &items); ///< nothing is chosen then
    QStringList items() const;
    int itemIndex() const { return m_buttons->checkedId(); } ///< -1: none
    void setItemIndex(int index);
    QAbstractButton *button(int index) const { return m_buttons->button(index); }

Q_SIGNALS:
    void clicked(int itemIndex); ///< by the user

private:
    QButtonGroup *m_buttons;
};
