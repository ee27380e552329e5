#include "platform/editors/combo_box.h"

#include <QAbstractItemView>
#include <QCoreApplication>
#include <QKeyEvent>
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
    view()->installEventFilter(this);
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

bool TDBComboBoxEh::eventFilter(QObject *watched, QEvent *event)
{
    const auto *key = event->type() == QEvent::KeyPress ? static_cast<QKeyEvent *>(event) : nullptr;
    const int row = view()->currentIndex().row();
    if (watched != view() || !key || row < 0 || (key->key() != Qt::Key_Return && key->key() != Qt::Key_Enter))
        return QComboBox::eventFilter(watched, event);
    hidePopup();
    setItemIndex(row);
    Q_EMIT activated(row);
    QCoreApplication::sendEvent(this, event);
    return true;
}

void TDBComboBoxEh::wheelEvent(QWheelEvent *event)
{
    // A wheel that scrolls past must not change a condition.
    if (hasFocus())
        QComboBox::wheelEvent(event);
    else
        event->ignore();
}
