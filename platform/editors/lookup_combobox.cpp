#include "platform/editors/lookup_combobox.h"

#include "platform/editors/lookup_list.h"
#include "platform/editors/lookup_match.h"
#include "platform/toolkit/handler.h"

#include <QKeyEvent>
#include <QToolButton>

using namespace platform;

TDBLookupComboboxEh::TDBLookupComboboxEh(QWidget *parent)
    : DropDownEdit(parent)
{
    setDropDownToolTip(QStringLiteral("打开列表 (F4)"));
    handle(addButton(QStringLiteral("…"), QStringLiteral("显示全部")), &QToolButton::clicked, this, &TDBLookupComboboxEh::openWholeList);
    handle(this, &QLineEdit::textEdited, this, &TDBLookupComboboxEh::narrowList);
}

TDBLookupComboboxEh::~TDBLookupComboboxEh() = default;

void TDBLookupComboboxEh::setFields(const QString &keyField, const QString &listField, const QString &indexField)
{
    m_keyField = keyField;
    m_listField = listField;
    m_indexField = indexField;
}

void TDBLookupComboboxEh::setDropDownColumns(const QList<LookupColumn> &columns)
{
    m_columns = columns;
    if (m_list)
        m_list->setColumns(columns);
}

TDataSet *TDBLookupComboboxEh::listDataSet() const
{
    TDataSet *dataSet = m_listSource ? m_listSource->dataSet() : nullptr;
    return dataSet && dataSet->active() ? dataSet : nullptr;
}

bool TDBLookupComboboxEh::isListOpen() const { return m_list && m_list->isVisible(); }

const LookupIndex &TDBLookupComboboxEh::index(const TDataSet &dataSet)
{
    LookupFields fields { -1, { dataSet.fieldByName(m_listField)->index() } };
    if (!m_indexField.isEmpty())
        fields.code = dataSet.fieldByName(m_indexField)->index();
    if (m_keyField.compare(m_listField, Qt::CaseInsensitive) != 0)
        fields.names.append(dataSet.fieldByName(m_keyField)->index());
    if (!m_index || !m_index->isOf(dataSet, fields)) {
        m_index = std::make_unique<LookupIndex>(dataSet, fields);
        const auto forget = [this] { m_index.reset(); };
        disconnect(&dataSet, nullptr, this, nullptr);
        handle(&dataSet, &TDataSet::rowsChanged, this, forget);
        handle(&dataSet, &TDataSet::rowEdited, this, forget);
    }
    return *m_index;
}

void TDBLookupComboboxEh::openList()
{
    TDataSet *dataSet = listDataSet();
    if (!dataSet)
        return;
    LookupMatches found = index(*dataSet).find(text());
    if (found.rows.empty() || found.exact)
        return openWholeList();
    const int best = found.rows.front();
    showList(dataSet, std::move(found.rows), best);
}

void TDBLookupComboboxEh::openWholeList()
{
    TDataSet *dataSet = listDataSet();
    if (!dataSet)
        return;
    const LookupIndex &index = this->index(*dataSet);
    const LookupMatches found = index.find(text());
    showList(dataSet, index.rowsByReading(), found.rows.empty() ? -1 : found.rows.front());
}

void TDBLookupComboboxEh::narrowList()
{
    TDataSet *dataSet = listDataSet();
    LookupMatches found = dataSet ? index(*dataSet).find(text()) : LookupMatches();
    if (found.rows.empty())
        return closeList(Choice::Leave);
    const int best = found.rows.front();
    showList(dataSet, std::move(found.rows), best);
}

void TDBLookupComboboxEh::showList(TDataSet *dataSet, std::vector<int> rows, int currentRow)
{
    if (!m_list) {
        m_list = new LookupList(this);
        m_list->setColumns(m_columns);
        handle(m_list, &LookupList::rowClicked, this, [this] { closeList(Choice::Take); });
        handle(m_list, &LookupList::goesOn, this, [this] {
            if (!isComposing())
                closeList(Choice::Take);
        });
    }
    m_list->showRows(dataSet, std::move(rows), currentRow);
    m_list->setGeometry(dropDownGeometry(m_list->contentSize().expandedTo(QSize(width(), 0))));
    m_list->show();
}

void TDBLookupComboboxEh::closeList(Choice choice)
{
    if (!isListOpen())
        return;
    const int row = m_list->currentRecord();
    m_list->hide();
    TDataSet *dataSet = listDataSet();
    if (choice == Choice::Take && dataSet && row >= 0)
        setText(dataSet->text(dataSet->fieldByName(m_keyField)->index(), row));
}

/// Whether the open list takes the key, and nobody else gets it; it may close.
bool TDBLookupComboboxEh::actOnList(QKeyEvent *event)
{
    if (isDropDownKey(*event) || event->key() == Qt::Key_Escape) {
        closeList(Choice::Leave);
        return true;
    }
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        m_list->walk(event);
        return true;
    default:
        return false;
    }
}

bool TDBLookupComboboxEh::event(QEvent *event)
{
    if (isListOpen() && !isComposing() && actBeforeKey(event))
        return true;
    return DropDownEdit::event(event);
}

/// What the open list has to do with events that come before a key press; true: nobody else gets it.
bool TDBLookupComboboxEh::actBeforeKey(QEvent *event)
{
    switch (event->type()) {
    case QEvent::FocusOut:
        // The toolkit takes the focus away for a popup, but what is typed over this one goes here.
        return static_cast<QFocusEvent *>(event)->reason() == Qt::PopupFocusReason;
    case QEvent::ShortcutOverride: {
        const int key = static_cast<QKeyEvent *>(event)->key();
        event->setAccepted(key == Qt::Key_Escape || key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_F4);
        return event->isAccepted();
    }
    default:
        return false;
    }
}

void TDBLookupComboboxEh::keyPressEvent(QKeyEvent *event)
{
    guarded([&] {
        if (isListOpen() && actOnList(event)) {
            event->accept();
            return;
        }
        Q_EMIT keyPressed(event->key());
        DropDownEdit::keyPressEvent(event);
    });
}
