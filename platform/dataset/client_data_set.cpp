#include "platform/dataset/client_data_set.h"

#include "platform/dataset/cell_matcher.h"
#include "platform/dataset/column_sum.h"
#include "platform/dataset/data_set_provider.h"
#include "platform/dataset/filter_expression.h"
#include "platform/dataset/quick_filter.h"
#include "platform/dataset/row_order.h"
#include "platform/dataset/row_snapshot.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/component.h"

#include <QLocale>

#include <algorithm>
#include <numeric>

using namespace platform;

using packet::ColumnType;

namespace {

FieldType fieldType(ColumnType type)
{
    switch (type) {
    case ColumnType::Text:
        return FieldType::Text;
    case ColumnType::Int64:
        return FieldType::Integer;
    case ColumnType::Decimal:
        return FieldType::Decimal;
    case ColumnType::Float64:
        return FieldType::Float;
    case ColumnType::Timestamp:
        return FieldType::DateTime;
    }
    return FieldType::Text;
}

packet::PacketPtr withoutRows(const packet::Packet &packet)
{
    auto schema = packet.schema();
    for (packet::Field &field : schema)
        field.dictionary = false;
    std::vector<std::shared_ptr<const packet::Dictionary>> dictionaries(schema.size());
    return std::make_shared<packet::Packet>(std::move(schema), std::vector<packet::Block>(), std::move(dictionaries), false);
}

} // namespace

TCustomClientDataSet::TCustomClientDataSet(QObject *parent)
    : TDataSet(parent)
    , m_quickFilter(std::make_unique<QuickFilter>())
{
}

TCustomClientDataSet::~TCustomClientDataSet() = default;

packet::PacketPtr TCustomClientDataSet::data() const { return m_overlay ? m_overlay->merged() : nullptr; }

void TCustomClientDataSet::setData(packet::PacketPtr data)
{
    close();
    if (!data)
        return;
    load(std::move(data));
    finishOpen();
}

RowSnapshot TCustomClientDataSet::snapshot() const
{
    if (!m_overlay)
        return { RowOverlay(std::make_shared<packet::Packet>(std::vector<packet::Field>(), std::vector<packet::Block>(),
                     std::vector<std::shared_ptr<const packet::Dictionary>>(), false)),
            {} };
    return { *m_overlay, m_allRows ? std::nullopt : std::optional(m_rows) };
}

bool TCustomClientDataSet::truncated() const { return m_overlay && m_overlay->packet().truncated(); }

QString TCustomClientDataSet::truncationNotice() const
{
    if (!truncated())
        return {};
    return u"已截断：只有前 " + QLocale(QLocale::Chinese, QLocale::China).toString(qulonglong(m_overlay->packet().rowCount())) + u" 行";
}

void TCustomClientDataSet::emptyDataSet()
{
    requireActive();
    m_overlay = std::make_unique<RowOverlay>(withoutRows(m_overlay->packet()));
    *m_quickFilter = {};
    m_filterExpression = m_filtered ? compiled(m_filter) : nullptr;
    rebuildRows();
    setState(DataSetState::Browse);
    setRecord(-1, Announce::Rows);
}

void TCustomClientDataSet::load(packet::PacketPtr packet)
{
    m_overlay = std::make_unique<RowOverlay>(std::move(packet));
    try {
        m_filterExpression = m_filtered ? compiled(m_filter) : nullptr;
    } catch (...) {
        m_overlay.reset();
        throw;
    }
    m_fields.clear();
    for (const packet::Field &field : m_overlay->packet().schema())
        m_fields.push_back(
            std::make_unique<TField>(this, int(m_fields.size()), QString::fromStdString(field.name), fieldType(field.type), field.scale));
    rebuildRows();
}

void TCustomClientDataSet::doOpen()
{
    const auto *owner = dynamic_cast<TComponentOwner *>(ownerOf(this));
    const auto *provider = owner ? qobject_cast<TDataSetProvider *>(owner->findComponent(m_providerName)) : nullptr;
    if (!provider)
        fail(QStringLiteral("没有数据，无法打开。"));
    load(provider->data());
}

void TCustomClientDataSet::doClose()
{
    m_overlay.reset();
    m_filterExpression.reset();
    *m_quickFilter = {};
    m_wideRows.reset();
    m_rows = {};
    m_allRows = true;
}

int TCustomClientDataSet::recordCount() const
{
    if (!m_overlay)
        return 0;
    return m_allRows ? int(m_overlay->rowCount()) : int(m_rows.size());
}

std::optional<quint32> TCustomClientDataSet::sourceRow(int row) const
{
    if (row < 0 || row >= recordCount())
        return {};
    return m_allRows ? quint32(row) : m_rows[std::size_t(row)];
}

int TCustomClientDataSet::shownRow(quint32 source) const
{
    if (m_allRows)
        return source < m_overlay->rowCount() ? int(source) : -1;
    const auto found = std::ranges::find(m_rows, source);
    return found == m_rows.end() ? -1 : int(found - m_rows.begin());
}

TDataSet::Bookmark TCustomClientDataSet::bookmark() const { return sourceRow(recordIndex()); }

bool TCustomClientDataSet::gotoBookmark(const Bookmark &bookmark)
{
    postPending();
    const int row = bookmark && m_overlay ? shownRow(*bookmark) : -1;
    if (row >= 0)
        setRecord(row);
    return row >= 0;
}

bool TCustomClientDataSet::isNull(int field, int row) const
{
    const auto source = sourceRow(row);
    return !source || m_overlay->isNull(std::size_t(field), *source);
}

QString TCustomClientDataSet::text(int field, int row) const
{
    const auto source = sourceRow(row);
    if (!source)
        return {};
    const auto column = std::size_t(field);
    if (m_overlay->packet().schema()[column].type == ColumnType::Text) {
        const std::string_view text = m_overlay->text(column, *source);
        return QString::fromUtf8(text.data(), qsizetype(text.size()));
    }
    std::string text;
    m_overlay->appendText(column, *source, text);
    return QString::fromStdString(text);
}

std::optional<packet::Decimal> TCustomClientDataSet::number(int field, int row) const
{
    const auto source = sourceRow(row);
    return source ? m_overlay->number(std::size_t(field), *source) : std::nullopt;
}

TDataSet::RowTest TCustomClientDataSet::textTest(int field, const TextPattern &pattern) const
{
    requireActive();
    const auto matcher = std::make_shared<CellMatcher>(*m_overlay, std::size_t(field), pattern);
    if (!matcher->isPossible())
        return [](int) { return false; };
    return [this, matcher](int row) {
        const auto source = sourceRow(row);
        return source && matcher->matches(*source);
    };
}

packet::Decimal TCustomClientDataSet::sum(int field) const
{
    if (!m_overlay)
        return {};
    const auto column = std::size_t(field);
    const ColumnType type = m_overlay->packet().schema()[column].type;
    if (!m_overlay->isPlain() || (type != ColumnType::Int64 && type != ColumnType::Decimal))
        return TDataSet::sum(field);
    return m_allRows ? sumOfColumn(m_overlay->packet(), column) : sumOfColumn(m_overlay->packet(), column, m_rows);
}

bool TCustomClientDataSet::locate(const QString &fields, const QStringList &values, LocateOption option)
{
    requireActive();
    postPending();
    const QStringList names = fields.split(u';');
    if (names.size() != values.size())
        fail(QStringLiteral("查找时字段与值的个数不同。"));
    std::vector<CellMatcher> matchers;
    for (qsizetype at = 0; at < names.size(); ++at)
        matchers.emplace_back(*m_overlay, std::size_t(fieldByName(names[at].trimmed())->index()), values[at], option);
    if (!std::ranges::all_of(matchers, &CellMatcher::isPossible))
        return false;
    const int count = recordCount();
    for (int row = 0; row < count; ++row) {
        const quint32 source = m_allRows ? quint32(row) : m_rows[std::size_t(row)];
        if (std::ranges::all_of(matchers, [source](const CellMatcher &matcher) { return matcher.matches(source); })) {
            setRecord(row);
            return true;
        }
    }
    return false;
}

void TCustomClientDataSet::requireWritable() const
{
    requireActive();
    if (m_readOnly)
        fail(QStringLiteral("是只读的，不能修改。"));
}

void TCustomClientDataSet::edit()
{
    if (isEditing())
        return;
    requireWritable();
    if (isEmpty())
        return append();
    m_overlay->beginEdit(*bookmark());
    setState(DataSetState::Edit);
}

void TCustomClientDataSet::append()
{
    requireWritable();
    postPending();
    m_rowBeforeAppend = recordIndex();
    m_overlay->beginAppend();
    if (!m_allRows)
        m_rows.push_back(m_overlay->rowCount() - 1);
    setState(DataSetState::Insert);
    setRecord(recordCount() - 1, Announce::Rows);
}

void TCustomClientDataSet::setCell(int field, const QString &text)
{
    const auto column = std::size_t(field);
    auto cell = RowOverlay::read(m_overlay->packet().schema()[column].type, text.toStdString());
    if (!cell) {
        const bool time = this->field(field)->type() == FieldType::DateTime;
        fail(u"的字段“" + this->field(field)->fieldName() + u"”不能填“" + text + (time ? u"”，这里要填日期时间。" : u"”，这里要填数字。"));
    }
    m_overlay->set(column, std::move(*cell));
}

void TCustomClientDataSet::post() { postPending(); }

void TCustomClientDataSet::doPost()
{
    m_overlay->commit();
    const bool mayMove = m_filterExpression || m_wideRows || !m_indexName.isEmpty();
    const auto current = bookmark();
    if (mayMove)
        rebuildRows();
    const int row = mayMove ? shownRow(*current) : recordIndex();
    setState(DataSetState::Browse);
    if (!mayMove)
        return announceRow(row);
    setRecord(row >= 0 ? row : recordIndex(), Announce::Rows);
}

void TCustomClientDataSet::cancel()
{
    if (!isEditing())
        return;
    const bool appended = state() == DataSetState::Insert;
    m_overlay->rollback();
    if (appended && !m_allRows)
        m_rows.pop_back();
    setState(DataSetState::Browse);
    if (!appended)
        return announceRow(recordIndex());
    setRecord(m_rowBeforeAppend, Announce::Rows);
}

void TCustomClientDataSet::deleteRow()
{
    requireWritable();
    if (state() == DataSetState::Insert)
        return cancel();
    cancel();
    if (isEmpty())
        fail(QStringLiteral("没有可以删除的行。"));
    const int row = recordIndex();
    m_overlay->remove(*bookmark());
    if (m_allRows || m_wideRows)
        rebuildRows();
    else
        m_rows.erase(m_rows.begin() + row);
    setRecord(row, Announce::Rows);
}

int TCustomClientDataSet::changeCount() const { return m_overlay ? m_overlay->changeCount() : 0; }

void TCustomClientDataSet::mergeChangeLog()
{
    requireActive();
    postPending();
    m_overlay->mergeChangeLog();
}

std::unique_ptr<FilterExpression> TCustomClientDataSet::compiled(const QString &filter) const
{
    if (!m_overlay || filter.trimmed().isEmpty())
        return {};
    return std::make_unique<FilterExpression>(filter, m_overlay->packet());
}

void TCustomClientDataSet::setFilter(const QString &filter)
{
    auto expression = m_filtered ? compiled(filter) : nullptr;
    postPending();
    m_filter = filter;
    if (!m_filtered)
        return;
    m_filterExpression = std::move(expression);
    showAgain();
}

void TCustomClientDataSet::setFiltered(bool filtered)
{
    auto expression = filtered ? compiled(m_filter) : nullptr;
    Application->record(QStringLiteral("filter"),
        { { QStringLiteral("dataset"), objectName() }, { QStringLiteral("text"), m_filter }, { QStringLiteral("on"), filtered } });
    if (filtered == m_filtered)
        return;
    postPending();
    m_filtered = filtered;
    m_filterExpression = std::move(expression);
    showAgain();
}

void TCustomClientDataSet::addIndex(const IndexDefinition &index)
{
    for (const IndexDefinition &other : m_indexes) {
        if (other.name.compare(index.name, Qt::CaseInsensitive) == 0)
            fail(u"已有索引“" + index.name + u"”。");
    }
    if (active()) {
        for (const QString &name : index.fields.split(u';'))
            fieldByName(name.trimmed());
    }
    m_indexes.append(index);
}

void TCustomClientDataSet::deleteIndex(const QString &name)
{
    if (m_indexName.compare(name, Qt::CaseInsensitive) == 0)
        setIndexName({});
    m_indexes.removeIf([&](const IndexDefinition &index) { return index.name.compare(name, Qt::CaseInsensitive) == 0; });
}

void TCustomClientDataSet::setIndexName(const QString &name)
{
    const auto known = [&](const IndexDefinition &index) { return index.name.compare(name, Qt::CaseInsensitive) == 0; };
    if (!name.isEmpty() && std::ranges::none_of(m_indexes, known))
        fail(u"没有索引“" + name + u"”。");
    if (name == m_indexName)
        return;
    postPending();
    m_indexName = name;
    showAgain();
}

std::vector<OrderKey> TCustomClientDataSet::orderKeys() const
{
    std::vector<OrderKey> keys;
    for (const IndexDefinition &index : m_indexes) {
        if (m_indexName.isEmpty() || index.name.compare(m_indexName, Qt::CaseInsensitive) != 0)
            continue;
        const QStringList descending = index.descendingFields.split(u';');
        for (const QString &name : index.fields.split(u';')) {
            // An index outlives the structure it was made for; a column that is gone orders nothing.
            const int column = m_overlay->packet().indexOf(name.trimmed().toStdString());
            if (column >= 0)
                keys.push_back({ std::size_t(column), descending.contains(name, Qt::CaseInsensitive) });
        }
    }
    return keys;
}

void TCustomClientDataSet::rebuildRows()
{
    m_rows = {};
    m_wideRows.reset();
    const auto keys = orderKeys();
    m_allRows = !m_filterExpression && keys.empty() && !m_overlay->hasDeleted();
    if (m_filterExpression) {
        m_rows = m_filterExpression->select(*m_overlay);
    } else if (!m_allRows) {
        m_rows.resize(m_overlay->rowCount());
        std::iota(m_rows.begin(), m_rows.end(), 0U);
        if (m_overlay->hasDeleted())
            std::erase_if(m_rows, [this](quint32 row) { return m_overlay->isDeleted(row); });
    }
    if (!m_allRows)
        orderRows(*m_overlay, keys, m_rows);
    narrowRows();
}

/// Goes from the rows without the quick filter to those with it.
void TCustomClientDataSet::narrowRows()
{
    if (m_quickFilter->isEmpty())
        return;
    auto passing = passingRows(*m_quickFilter, *m_overlay, m_allRows ? nullptr : &m_rows);
    m_wideRows = { m_allRows, std::move(m_rows) };
    m_rows = std::move(passing);
    m_allRows = false;
}

/// Shows the rows anew after the filter or the index has changed; the current row stays current while it is shown.
void TCustomClientDataSet::showAgain()
{
    if (!m_overlay)
        return;
    const auto current = bookmark();
    rebuildRows();
    showCurrent(current);
}

void TCustomClientDataSet::showCurrent(const Bookmark &current)
{
    const int row = current ? shownRow(*current) : -1;
    setRecord(std::max(row, 0), Announce::Rows);
}

void TCustomClientDataSet::setQuickFilter(const QuickFilter &filter)
{
    requireActive();
    postPending();
    const auto current = bookmark();
    if (m_wideRows) {
        m_allRows = m_wideRows->all;
        m_rows = std::move(m_wideRows->rows);
        m_wideRows.reset();
    }
    *m_quickFilter = filter;
    narrowRows();
    showCurrent(current);
}

int TCustomClientDataSet::unnarrowedCount() const
{
    if (!m_wideRows)
        return recordCount();
    return m_wideRows->all ? int(m_overlay->rowCount()) : int(m_wideRows->rows.size());
}

std::vector<ValueCount> TCustomClientDataSet::valueCounts(int field, const QuickFilter &filter, std::size_t most) const
{
    requireActive();
    const bool all = m_wideRows ? m_wideRows->all : m_allRows;
    const auto &rows = m_wideRows ? m_wideRows->rows : m_rows;
    return countValues(*m_overlay, std::size_t(field), passingRows(filter, *m_overlay, all ? nullptr : &rows), most);
}

void TClientDataSetEx::setRemoteServer(TCustomRemoteServer *server) { m_remoteServer = server; }

void TClientDataSetEx::doOpen()
{
    if (!providerName().isEmpty())
        return TCustomClientDataSet::doOpen();
    if (!m_remoteServer)
        fail(QStringLiteral("没有连接服务器，无法查询。"));
    Application->record(QStringLiteral("statement"),
        { { QStringLiteral("dataset"), objectName() }, { QStringLiteral("connection"), m_remoteServer->objectName() },
            { QStringLiteral("sql"), m_commandText } });
    load(m_remoteServer->runStatement(m_commandText));
}
