#pragma once

namespace platform {

/// How large every grid is shown, in percent of its design: texts, rows and columns alike.
int gridZoom();
/// Takes the nearest zoom that there is, at once in all grids.
void setGridZoom(int percent);
/// How large the program's texts are, in percent of their design. Grids whose font is designed in pixels follow it; fonts in points
/// are the program's own, which has taken it already.
int textScale();
void setTextScale(int percent);
/// So many pixels of a design as they are at that size.
int scaledPixels(int designed);
/// The next larger or smaller zoom.
void stepGridZoom(int steps);

} // namespace platform
