#pragma once

#include "platform/report/definition/definition.h"

#include <QByteArray>
#include <QPolygon>

#include <vector>

namespace report {

enum class Shape : quint8 { Text, Line, Rectangle, Polygon, Image };

/// One thing that is drawn. Lengths are in hundredths of a millimetre from the paper's top left corner.
struct Primitive {
    Shape shape = Shape::Text;
    quint16 style = 0; ///< in Resources::styles
    quint16 source = 0; ///< in Resources::sources
    QRect box {}; ///< a line runs from its top left to its bottom right corner
    QString text {}; ///< a line separator (U+2028) stands where a wrapped line goes on below
    QString number {}; ///< the exact value that the text shows, "" when that is no number
    QPolygon points {}; ///< Polygon
    int image = -1; ///< in Resources::images
};

using Page = QList<Primitive>;

/// The object of the report file that drew something.
struct Source {
    QString name {};
    BandKind band = BandKind::Master;
    int left = 0; ///< where it stands, for filters that form columns
    int width = 0;
};

/// What the pages of one report share.
struct Resources {
    std::vector<Style> styles {};
    std::vector<Source> sources {};
    QList<QByteArray> images {}; ///< as their files hold them

    /// The number of a style that looks so; added when there is none.
    quint16 styleNumber(const Style &style);
};

/// Adds what one object draws to a page.
class Drawing {
public:
    Drawing(Resources &resources, quint16 source, Page &page)
        : m_resources(resources)
        , m_source(source)
        , m_page(page)
    {
    }

    void text(const Style &style, const QRect &box, const QString &text);
    void line(const Style &style, QPoint from, QPoint to);
    void rectangle(const Style &style, const QRect &box);
    void polygon(const Style &style, const QPolygon &points);

private:
    Resources &m_resources;
    quint16 m_source;
    Page &m_page;
};

} // namespace report
