#pragma once

#include "engine/engine.h"

#include <vector>

namespace server {

/// Which rows of the demo network belong to a site: those of its own waybills, wherever they are, and of its own scans, customers and
/// people. The lists of sites, kinds and prices are everybody's.
std::vector<engine::TableRule> demoRules();

} // namespace server
