#pragma once

#include <QString>

#include <memory>

class QMimeData;
class TDBGridEh;

namespace platform {

enum class CopyTitles;

/// The selected cells of a grid (else its current cell) for the clipboard: plain text with tabs, and an HTML table in which
/// spreadsheets keep codes as text, however many digits they have.
std::unique_ptr<QMimeData> copiedCells(const TDBGridEh &grid, CopyTitles titles);

/// A caption in one line.
QString plainTitle(QString caption);

} // namespace platform
