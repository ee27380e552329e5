#pragma once

#include "platform/report/layout/page.h"
#include "platform/report/layout/text_face.h"

#include <QHash>
#include <QImage>

class QPainter;

namespace report {

/// Draws pages on any device. Keeps the fonts and pictures of one report, so a painter that draws many pages should live as long.
class PagePainter {
public:
    explicit PagePainter(const Resources &resources)
        : m_resources(resources)
    {
    }

    /// The painter's unit must be a hundredth of a millimetre, its origin the paper's corner.
    void paint(QPainter &painter, const Page &page);

private:
    void paintText(QPainter &painter, const Primitive &primitive);
    void paintLine(QPainter &painter, const QRectF &box, QString text, Qt::Alignment alignment, const TextFace &face) const;
    void paintFrame(QPainter &painter, const QRect &box, const Style &style) const;
    const QImage &image(int index);

    const Resources &m_resources;
    TextFaces m_faces;
    QHash<int, QImage> m_images;
};

} // namespace report
