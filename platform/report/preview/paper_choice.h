#pragma once

#include "platform/report/definition/page_setup.h"

#include <functional>
#include <memory>

namespace report {

class PreparedReport;

/// Lets a person change the paper of a report in its preview.
struct PaperChoice {
    PageSetup setup {};
    /// Lays the report out for another paper; throws Exception. Empty: the paper is as it is.
    std::function<std::unique_ptr<PreparedReport>(const PageSetup &setup)> layOut {};
};

} // namespace report
