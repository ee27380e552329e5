#pragma once

#include "platform/report/definition/definition.h"
#include "platform/report/print_db_grid.h"

namespace report {

/// What a grid looks like on paper.
struct GridReport {
    const TDBGridEh &grid;
    const QMarginsF &margins;
    const PrintBand &header;
    const PrintBand &footer;
    const QString &title;
    const QStringList &notes; ///< below the title

    /// A report over the grid's GridRows: titles of up to two levels on each page, a row of cells, and the grid's footers at the end.
    Definition definition() const;

private:
    struct Slot {
        int column;
        int left;
        int width;
    };
    int wantedWidth() const; ///< as on the screen
    int roomOn(int paperWidth) const;
    bool isAcross() const;
    int room() const;
    qreal scale() const;
    QList<Slot> columnPlaces() const;
    Band titleBand(int room) const;
    Band pageBand(BandKind kind, const PrintBand &band, int room) const;
    Band columnTitles(const QList<Slot> &places) const;
    Band rowBand(const QList<Slot> &places) const;
    Band footerBand(const QList<Slot> &places) const;
    Style cellStyle() const;
};

} // namespace report
