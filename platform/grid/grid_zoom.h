#pragma once

namespace platform {

/// How large every grid is shown, in percent of its design: texts, rows and columns alike.
int gridZoom();
/// Takes the nearest zoom that there is, at once in all grids.
void setGridZoom(int percent);
/// The next larger or smaller zoom.
void stepGridZoom(int steps);

} // namespace platform
