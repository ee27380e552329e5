#pragma once

namespace platform {

/// Makes grids known to screen readers: as tables whose cells have titles and values, and that speak of each step of the current cell.
void makeGridsAccessible();

} // namespace platform
