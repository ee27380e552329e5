#pragma once

#include "platform/grid/grid_columns.h"

/// The columns of entered waybills; `destination` is the column of the site they are sent to.
GridColumns billColumns(const GridColumn &destination);
