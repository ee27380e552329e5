#include "platform/grid/grid_zoom.h"

#include "platform/grid/db_grid.h"

#include <QApplication>

#include <algorithm>

namespace platform {

namespace {

constexpr int smallest = 50;
constexpr int largest = 300;
constexpr int step = 10;

int zoom = 100;
int scale = 100;

void tellGrids()
{
    for (QWidget *widget : QApplication::allWidgets()) {
        if (auto *grid = qobject_cast<TDBGridEh *>(widget))
            grid->takeZoom();
    }
}

} // namespace

int gridZoom() { return zoom; }

void setGridZoom(int percent)
{
    zoom = std::clamp(percent, smallest, largest);
    tellGrids();
}

int textScale() { return scale; }

void setTextScale(int percent)
{
    scale = std::clamp(percent, smallest, largest);
    tellGrids();
}

int scaledPixels(int designed) { return designed * scale / 100; }

void stepGridZoom(int steps) { setGridZoom((zoom + step / 2) / step * step + steps * step); }

} // namespace platform
