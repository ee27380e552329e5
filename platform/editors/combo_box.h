#pragma once

#include <QComboBox>

/// A drop-down list with free typing; each item has a key beside its text.
class TDBComboBoxEh : public QComboBox {
    Q_OBJECT

public:
    explicit TDBComboBoxEh(QWidget *parent = nullptr);

    QString text() const { return currentText(); }
    void setText(const QString &text);
    /// The items as one text, one a line; any line ending. The shown text stays.
    void setItemsText(const QString &lines);
    QStringList items() const;
    void setKeyItemsText(const QString &lines);
    const QStringList &keyItems() const { return m_keyItems; }
    /// The item whose text is the shown one, or -1.
    int itemIndex() const;
    void setItemIndex(int index); ///< -1 empties the text

protected:
    /// Enter in the dropped-down list takes the item and goes on to the form, as it does in the closed one.
    bool eventFilter(QObject *watched, QEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    QStringList m_keyItems;
};
