#include "platform/dataset/data_set.h"

#include <algorithm>
#include <utility>

using namespace platform;

bool TField::isNull() const { return m_dataSet->isNull(m_index, m_dataSet->recordIndex()); }

QString TField::asString() const { return m_dataSet->text(m_index, m_dataSet->recordIndex()); }

packet::Decimal TField::asDecimal() const
{
    if (isNull())
        return {};
    const auto number = m_dataSet->number(m_index, m_dataSet->recordIndex());
    if (!number)
        m_dataSet->fail(u"的字段“" + m_name + u"”的值“" + asString() + u"”不是数字。");
    return *number;
}

void TField::setAsString(const QString &text)
{
    if (!m_dataSet->isEditing())
        m_dataSet->fail(QStringLiteral("不在编辑状态，不能修改字段“") + m_name + u"”。");
    m_dataSet->setCell(m_index, text);
    m_dataSet->announceRow(m_dataSet->recordIndex());
}

void TDataSet::setActive(bool active)
{
    if (active == this->active())
        return;
    if (active) {
        doOpen();
        finishOpen();
        return;
    }
    // Controls may look at a field until they have heard that the dataset is closed.
    const auto fields = std::move(m_fields);
    m_fields.clear();
    m_fieldsByName.clear();
    doClose();
    setState(DataSetState::Inactive);
    makeCurrent(-1, { .bof = true, .eof = true }, Announce::Rows);
}

void TDataSet::finishOpen()
{
    m_fieldsByName.clear();
    for (const auto &field : m_fields)
        m_fieldsByName.emplace(field->fieldName().toUpper(), field.get());
    setState(DataSetState::Browse);
    makeCurrent(isEmpty() ? -1 : 0, { .bof = true, .eof = isEmpty() }, Announce::Rows);
    Q_EMIT afterOpen();
}

TField *TDataSet::findField(QStringView name) const { return m_fieldsByName.value(name.toString().toUpper()); }

TField *TDataSet::fieldByName(QStringView name) const
{
    if (TField *field = findField(name))
        return field;
    fail(u"没有字段“" + name + u"”。");
}

void TDataSet::first()
{
    postPending();
    makeCurrent(isEmpty() ? -1 : 0, { .bof = true, .eof = isEmpty() });
}

void TDataSet::last()
{
    postPending();
    makeCurrent(recordCount() - 1, { .bof = isEmpty(), .eof = true });
}

int TDataSet::moveBy(int rows)
{
    postPending();
    const int count = recordCount();
    if (count == 0 || rows == 0)
        return 0;
    const qint64 wanted = qint64(m_recordIndex) + rows;
    const int target = int(std::clamp<qint64>(wanted, 0, count - 1));
    const int moved = target - m_recordIndex;
    makeCurrent(target, { .bof = wanted < 0, .eof = wanted >= count });
    return moved;
}

QString TDataSet::filterNotice() const
{
    if (unnarrowedCount() == recordCount())
        return {};
    return QStringLiteral("已筛选：%L1 行中的 %L2 行").arg(unnarrowedCount()).arg(recordCount());
}

void TDataSet::moveTo(int row)
{
    postPending();
    setRecord(row);
}

void TDataSet::setRecord(int row, Announce announce)
{
    const int count = recordCount();
    makeCurrent(std::clamp(row, std::min(0, count - 1), count - 1), { .bof = count == 0, .eof = count == 0 }, announce);
}

void TDataSet::makeCurrent(int row, Ends ends, Announce announce)
{
    m_ends = ends;
    const bool moved = std::exchange(m_recordIndex, row) != row;
    if (announce == Announce::Rows)
        announceRows();
    if (moved && controlsDisabled())
        m_heldMove = true;
    else if (moved)
        Q_EMIT recordMoved(m_recordIndex);
}

packet::Decimal TDataSet::sum(int field) const
{
    packet::Decimal total;
    for (int row = 0; row < recordCount(); ++row)
        total = total + number(field, row).value_or(packet::Decimal {});
    return total;
}

TDataSet::RowTest TDataSet::textTest(int field, const TextPattern &pattern) const
{
    return [this, field, pattern](int row) { return pattern.matches(text(field, row)); };
}

void TDataSet::enableControls()
{
    if (m_disabled == 0 || --m_disabled > 0)
        return;
    const bool rows = std::exchange(m_heldRows, false);
    const bool move = std::exchange(m_heldMove, false);
    if (rows)
        Q_EMIT rowsChanged();
    if (move)
        Q_EMIT recordMoved(m_recordIndex);
}

void TDataSet::setState(DataSetState state)
{
    if (m_state == state)
        return;
    m_state = state;
    Q_EMIT stateChanged();
}

void TDataSet::announceRows()
{
    if (controlsDisabled())
        m_heldRows = true;
    else
        Q_EMIT rowsChanged();
}

void TDataSet::announceRow(int row)
{
    if (controlsDisabled())
        m_heldRows = true;
    else
        Q_EMIT rowEdited(row);
}

void TDataSet::requireActive() const
{
    if (!active())
        fail(QStringLiteral("没有打开。"));
}

void TDataSet::postPending()
{
    if (isEditing())
        doPost();
}

void TDataSet::fail(const QString &what) const { throw DataSetError(u"数据集“" + objectName() + u"”" + what); }
