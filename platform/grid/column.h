#pragma once

#include <QColor>
#include <QList>
#include <QString>
#include <QStringList>

namespace platform {

enum class FooterKind { None, StaticText, Sum, Count };

struct ColumnFooter {
    FooterKind kind = FooterKind::None;
    QString value {}; ///< StaticText: the text
    Qt::Alignment alignment {}; ///< none: as its column
};

/// How a column shows its numbers; files and the clipboard get them as they are.
enum class NumberForm {
    Exact, ///< as they are: codes, years
    Quantity, ///< thousands marks, and the same decimals in all rows
    Money ///< the same, with at least two decimals
};

enum class ColumnScope { All, Visible };

enum class SortMark { None, Ascending, Descending };

/// One column of a grid, as it stands now; the designed form is a list of these too.
struct Column {
    QString fieldName; ///< empty: the column shows no data
    QString caption; ///< "a|b" is a title of two levels
    int width = 64; ///< pixels
    bool visible = true;
    bool readOnly = false;
    Qt::Alignment alignment = {}; ///< none: numbers right, everything else left
    NumberForm numberForm = NumberForm::Exact; ///< a column of texts shows them as they are in every form
    QList<ColumnFooter> footers {}; ///< one for each footer row, from the top
    QString checkedKey {}; ///< the value shown as a ticked box; with uncheckedKey, a check-box column
    QString uncheckedKey {};
    bool ellipsis = false; ///< shows an ellipsis button
    QStringList dropDownFields {}; ///< shows a drop-down button
    bool titleButton = false; ///< a click on the title sorts
    SortMark sortMark = SortMark::None;
    int sortKey = 0; ///< 1 for the first of the sort keys, 0 without a mark

    bool isCheckBox() const { return !checkedKey.isEmpty(); }
};

} // namespace platform
