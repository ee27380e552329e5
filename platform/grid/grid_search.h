#pragma once

#include "platform/dataset/text_pattern.h"

#include <QList>
#include <QPoint>

#include <optional>

class TDBGridEh;

namespace platform {

/// What to look for in a grid, and where.
struct GridSearch {
    QString text;
    TextPattern::Match match = TextPattern::Match::Anywhere;
    Qt::CaseSensitivity sensitivity = Qt::CaseInsensitive;
    int column = -1; ///< -1: every visible column
    bool titles = false; ///< the column titles too
};

enum class SearchDirection { Forward, Backward };

constexpr int titleRow = -1; ///< stands before row 0 when titles are searched

/// The next cell (x: column, y: row or titleRow) that carries the text, row by row from behind `start`, around the end, `start`
/// itself last. Check boxes carry none.
std::optional<QPoint> findCell(const TDBGridEh &grid, const GridSearch &search, QPoint start, SearchDirection direction);

/// All cells that carry the text, titles left out, row by row; only the first `most` are listed.
struct FoundCells {
    QList<QPoint> listed;
    qint64 count;
};
FoundCells findCells(const TDBGridEh &grid, const GridSearch &search, qsizetype most);

} // namespace platform
