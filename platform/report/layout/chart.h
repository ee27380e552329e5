#pragma once

#include "platform/report/layout/add_in.h"

namespace report {

/// Charts: bars, lines and pie.
class ChartObject : public ReportAddIn {
    Q_OBJECT

public:
    using ReportAddIn::ReportAddIn;
    ObjectKind kind() const override { return ObjectKind::Chart; }
    void draw(const AddInTask &task, Drawing &drawing) const override;
};

} // namespace report
