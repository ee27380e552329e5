#include "platform/grid/sum_list.h"

#include "platform/dataset/data_set.h"

namespace platform {

packet::Decimal SumList::sum(const TDataSet &dataSet, int field)
{
    const auto known = m_sums.constFind(field);
    return known != m_sums.cend() ? *known : *m_sums.insert(field, dataSet.sum(field));
}

} // namespace platform
