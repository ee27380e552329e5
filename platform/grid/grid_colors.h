#pragma once

#include <QColor>

class QPalette;

namespace platform {

/// A grid's colours, taken from a widget's palette.
struct GridColors {
    explicit GridColors(const QPalette &palette);

    QColor base;
    QColor text;
    QColor line;
    QColor title;
    QColor titleHover;
    QColor titlePressed;
    QColor titleText;
    QColor mark; ///< sort marks, the current-row arrow
    QColor frozenLine;
    QColor found; ///< behind what a search has found
    QColor accent; ///< the focus cell's frame, the place where a dragged column would go

    /// A cell's background when its row is current, or when the cell is selected.
    QColor currentRow(const QColor &background) const;
    QColor selected(const QColor &background) const;
    /// A designed background as it is painted: on a dark palette a dark one of the same hue.
    QColor background(const QColor &designed) const;
    /// A designed text colour likewise, light enough for a dark palette.
    QColor textColor(const QColor &designed) const;
};

/// Text that wants a person's attention, as it is designed, and as it can be read on a palette.
inline constexpr QColor alarmColor(0xb0, 0x00, 0x20);
QColor alarmColorOn(const QPalette &palette);
bool isDark(const QPalette &palette);

/// The background of a result's row, by its number from 1: every other row has the darker one.
QColor rowStripe(int number);

/// `share` of `over` (0 to 1) painted on `under`.
QColor blend(const QColor &under, const QColor &over, qreal share);
/// Black or white, whichever can be read on `background`.
QColor readableOn(const QColor &background);

} // namespace platform
