#pragma once

#include <QColor>
#include <QFont>

#include <functional>

namespace platform {

/// What an event may change of one cell before it is painted.
struct CellParameters {
    QColor background;
    QColor textColor;
    QFont font;
};

using CellEvent = std::function<void(int row, int column, CellParameters &parameters)>;

} // namespace platform
