#pragma once

#include "platform/grid/grid_columns.h"

namespace plugin {

/// The columns of entered waybills; `destination` is the column of the site they are sent to.
platform::GridColumns billColumns(const platform::GridColumn &destination);

} // namespace plugin
