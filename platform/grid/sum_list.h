#pragma once

#include "packet/decimal.h"

#include <QHash>

class TDataSet;

namespace platform {

/// The exact sums of a dataset's fields over its shown rows, each computed when first asked for.
class SumList {
public:
    packet::Decimal sum(const TDataSet &dataSet, int field);
    /// The rows or their values changed.
    void invalidate() { m_sums.clear(); }

private:
    QHash<int, packet::Decimal> m_sums;
};

} // namespace platform
