#pragma once

#include "platform/report/layout/add_in.h"

namespace report {

/// Bar codes: Code 128, Code 39, EAN-13 and QR.
class BarCodeObject : public ReportAddIn {
    Q_OBJECT

public:
    using ReportAddIn::ReportAddIn;
    ObjectKind kind() const override { return ObjectKind::BarCode; }
    void draw(const AddInTask &task, Drawing &drawing) const override;
};

} // namespace report
