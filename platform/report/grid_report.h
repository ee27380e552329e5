#pragma once

#include "platform/report/definition/page_setup.h"
#include "platform/report/print_db_grid.h"

namespace report {

/// What a grid looks like on paper.
class GridReport {
public:
    /// The grid must outlive it and stay as it is.
    GridReport(const TDBGridEh &grid, const PageSetup &setup);

    struct Texts {
        QString title;
        QStringList notes; ///< below the title
        PrintBand header;
        PrintBand footer;
    };
    /// Reports over the grid's GridRows: titles of up to two levels on each page, a row of cells, and the grid's footers at the end.
    /// Several when the columns do not fit: each begins with the frozen columns (or the first one) and shows a part of the others.
    QList<Definition> parts(const Texts &texts) const;

private:
    struct Slot {
        int column;
        int left;
        int width;
    };
    using Slots = QList<Slot>;

    void turnPaper(int wantedWidth);
    void divide(const Slots &columns);
    Definition part(qsizetype number, const Texts &texts) const;
    Band titleBand(const Texts &texts) const;
    Band pageBand(BandKind kind, const PrintBand &band, qsizetype part) const;
    QString bandText(const QString &text, qsizetype part) const;
    Band columnTitles(const Slots &places) const;
    Band rowBand(const Slots &places) const;
    Band footerBand(const Slots &places) const;
    Style cellStyle() const;

    const TDBGridEh &m_grid;
    const PageSetup m_setup;
    QSize m_paper; ///< as it is turned
    int m_room = 0; ///< between the margins
    qreal m_scale = 1; ///< of the screen's sizes
    QList<Slots> m_parts;
};

} // namespace report
