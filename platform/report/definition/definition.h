#pragma once

#include <QColor>
#include <QList>
#include <QMargins>
#include <QRect>
#include <QSize>
#include <QString>

/// A report as plain values: what a report file says. Lengths are in hundredths of a millimetre.
namespace report {

constexpr int millimetre = 100;

/// Where something stands in the report file, counted from 1; line 0 when no file names it.
struct FilePosition {
    int line = 0;
    int column = 0;
};

enum class BandKind { Title, PageHeader, ColumnHeader, GroupHeader, Master, GroupFooter, ColumnFooter, Summary, PageFooter };
enum class ObjectKind { Memo, Line, Rectangle, Picture, BarCode, Chart };
enum class ChartKind { Bars, Lines, Pie };

enum Side : quint8 { NoSide = 0, LeftSide = 1, TopSide = 2, RightSide = 4, BottomSide = 8, AllSides = 15 };

/// How an object looks; for lines and rectangles only the colours and the line count.
struct Style {
    QString family = QStringLiteral("宋体");
    qreal points = 9;
    bool bold = false;
    bool italic = false;
    bool underline = false;
    QColor color = Qt::black;
    QColor fill {}; ///< invalid: none
    quint8 sides = NoSide;
    int lineWidth = 10;
    QColor lineColor = Qt::black;
    Qt::PenStyle lineStyle = Qt::SolidLine;
    Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter;
    QString format {}; ///< of numbers ("#,##0.00") or times ("yyyy-mm-dd"); "" shows them plainly

    bool operator==(const Style &) const = default;
};

struct Object {
    ObjectKind kind = ObjectKind::Memo;
    QString name {};
    FilePosition place {}; ///< of the object
    QRect box {}; ///< within its band
    QString text {}; ///< memo and bar code: text with expressions in brackets; picture: the file's name
    FilePosition textPlace {};
    Style style {};
    bool wrap = false;
    bool grow = false; ///< a memo that wraps makes its band higher when its text needs it
    bool hideZero = false;
    QString symbology = QStringLiteral("code128");
    bool showText = true; ///< the readable line under a bar code
    ChartKind chart = ChartKind::Bars;
    QString label {}; ///< chart: an expression for each label
    FilePosition labelPlace {};
    QString value {}; ///< chart: an expression that is added up for each label
    FilePosition valuePlace {};
};

struct Band {
    BandKind kind = BandKind::Master;
    QString name {}; ///< joins a group footer to its header
    FilePosition place {};
    int height = 0;
    QString groupBy {}; ///< group header: an expression; a new group begins where its value changes
    FilePosition groupByPlace {};
    bool newPage = false; ///< group header: each group after the first begins on a page of its own
    bool repeat = false; ///< group header: stands again on the pages on which its group goes on
    QColor stripe {}; ///< master: behind every second row
    QList<Object> objects {};
};

struct Definition {
    QString title {}; ///< names the preview and the print job
    QString fileName {}; ///< "" when no file holds it; pictures stand beside it
    QSize paper { 21000, 29700 }; ///< as it is turned
    QMargins margins { 1000, 1000, 1000, 1000 };
    bool fitWidth = false; ///< makes everything smaller when it is wider than the page allows
    QList<Band> bands {};
};

} // namespace report
