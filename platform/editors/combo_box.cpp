#include "platform/editors/combo_box.h"

#include <QRegularExpression>
#include <QWheelEvent>

namespace {

constexpr int mostVisibleItems = 20;

/// The last line may end or not.
QStringList linesOf(const QString &text)
{
    static const QRegularExpression ending(QStringLiteral("\r\n|\r|\n"));
    QStringList lines = text.split(ending);
    if (lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

} // namespace

TDBComboBoxEh::TDBComboBoxEh(QWidget *parent)
    : QComboBox(parent)
{
    setEditable(true);
    setInsertPolicy(QComboBox::NoInsert);
    setCompleter(nullptr);
    setMaxVisibleItems(mostVisibleItems);
    setFocusPolicy(Qt::StrongFocus);
}

void TDBComboBoxEh::setText(const QString &text)
{
    setCurrentIndex(findText(text));
    setEditText(text);
}

void TDBComboBoxEh::setItemsText(const QString &lines)
{
    const QString shown = text();
    clear();
    addItems(linesOf(lines));
    setText(shown);
}

QStringList TDBComboBoxEh::items() const
{
    QStringList items;
    for (int index = 0; index < count(); ++index)
        items.append(itemText(index));
    return items;
}

void TDBComboBoxEh::setKeyItemsText(const QString &lines) { m_keyItems = linesOf(lines); }

int TDBComboBoxEh::itemIndex() const { return findText(text()); }

void TDBComboBoxEh::setItemIndex(int index)
{
    setCurrentIndex(index);
    setEditText(index < 0 ? QString() : itemText(index));
}

void TDBComboBoxEh::wheelEvent(QWheelEvent *event)
{
    // A wheel that scrolls past must not change a condition.
    if (hasFocus())
        QComboBox::wheelEvent(event);
    else
        event->ignore();
}
