#include "platform/grid/sum_list.h"

#include "platform/dataset/client_data_set.h"

namespace {

packet::Decimal sumOfRows(const TDataSet &dataSet, int field)
{
    if (const auto *clientDataSet = qobject_cast<const TCustomClientDataSet *>(&dataSet))
        return clientDataSet->sum(field);
    packet::Decimal total;
    for (int row = 0; row < dataSet.recordCount(); ++row)
        total = total + dataSet.number(field, row).value_or(packet::Decimal {});
    return total;
}

} // namespace

packet::Decimal SumList::sum(const TDataSet &dataSet, int field)
{
    const auto known = m_sums.constFind(field);
    return known != m_sums.cend() ? *known : *m_sums.insert(field, sumOfRows(dataSet, field));
}
