#pragma once

#include "platform/report/definition/definition.h"

#include <QMarginsF>
#include <QVariantMap>

namespace report {

enum class Turn { Automatic, Upright, Across };
/// What becomes of columns for which a page is too narrow. Automatic: they are made smaller as far as they are read well.
enum class WideColumns { Automatic, Shrink, Split };

/// The paper that a person prints a grid on.
struct PageSetup {
    QSize paper { 21000, 29700 }; ///< as it goes into the printer, in hundredths of a millimetre
    Turn turn = Turn::Automatic;
    QMarginsF margins { 10, 10, 10, 10 }; ///< in millimetres
    WideColumns wideColumns = WideColumns::Automatic;

    bool operator==(const PageSetup &) const = default;

    /// Whether there is such paper and the margins leave room on it, however it is turned.
    bool makesSense() const;
    /// As it is kept between runs. `otherwise` when the whole makes no sense.
    QVariantMap toMap() const;
    static PageSetup fromMap(const QVariantMap &map, const PageSetup &otherwise);
};

struct NamedPaper {
    QStringView name;
    QSize size;
    qreal leastSideMargin; ///< in millimetres: the holes of forms are no place to print on
};
/// The papers of an office and its dot-matrix printer.
const QList<NamedPaper> &namedPapers();

/// What a paper's sides may be.
constexpr int leastSide = 5000;
constexpr int mostSide = 120000;

} // namespace report
