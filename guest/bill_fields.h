#pragma once

#include <QStringView>

#include <span>

namespace guest {

/// One value of a waybill as it was entered.
struct BillField {
    QStringView expression; ///< in a statement over tab_bill a
    QStringView caption;
    int span = 1; ///< places of the four that a line of the window has
};

/// In the order in which a person reads them.
std::span<const BillField> billFields();

} // namespace guest
