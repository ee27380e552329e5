#include "client/icons.h"

#include <QHash>
#include <QPainter>
#include <QPainterPath>

namespace client {
namespace {

constexpr int iconSize = 20;
const QColor ink(70, 120, 190); // to be seen on light and dark alike

void drawQuery(QPainter &painter)
{
    painter.setBrush(ink);
    painter.drawPolygon(QPolygonF({ { 5, 3 }, { 17, 10 }, { 5, 17 } }));
}

void drawExport(QPainter &painter)
{
    painter.drawPolyline(QPolygonF({ { 3, 11 }, { 3, 17 }, { 17, 17 }, { 17, 11 } }));
    painter.drawLine(QPointF(10, 13), QPointF(10, 3));
    painter.drawPolyline(QPolygonF({ { 6, 7 }, { 10, 3 }, { 14, 7 } }));
}

void drawPrint(QPainter &painter)
{
    painter.drawRect(QRectF(5, 2.5, 10, 5));
    painter.drawRoundedRect(QRectF(2.5, 7.5, 15, 7), 1, 1);
    painter.setBrush(Qt::white);
    painter.drawRect(QRectF(5, 12, 10, 5.5));
}

void drawFind(QPainter &painter)
{
    painter.drawEllipse(QPointF(8.5, 8.5), 5, 5);
    painter.drawLine(QPointF(12.5, 12.5), QPointF(17, 17));
}

void drawCopy(QPainter &painter)
{
    painter.drawRect(QRectF(3, 3, 9, 11));
    painter.setBrush(Qt::white);
    painter.drawRect(QRectF(8, 6, 9, 11));
}

void drawClose(QPainter &painter)
{
    painter.drawLine(QPointF(5, 5), QPointF(15, 15));
    painter.drawLine(QPointF(15, 5), QPointF(5, 15));
}

template <class Draw>
QIcon drawn(int size, Draw draw)
{
    QIcon icon;
    for (const int scale : { 1, 2, 4 }) {
        QPixmap pixmap(size * scale, size * scale);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(scale, scale);
        painter.setPen(QPen(ink, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        draw(painter);
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace

QIcon commandIcon(const char *name)
{
    static const QHash<QByteArray, void (*)(QPainter &)> drawings { { "query", drawQuery }, { "export", drawExport },
        { "print", drawPrint }, { "find", drawFind }, { "copy", drawCopy }, { "close", drawClose } };
    return drawn(iconSize, drawings.value(name));
}

QIcon programIcon()
{
    return drawn(32, [](QPainter &painter) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(ink);
        painter.drawRoundedRect(QRectF(1, 1, 30, 30), 6, 6);
        painter.setPen(QPen(Qt::white, 2.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPolygon(QPolygonF({ { 6, 12 }, { 16, 7 }, { 26, 12 }, { 26, 22 }, { 16, 27 }, { 6, 22 } }));
        painter.drawPolyline(QPolygonF({ { 6, 12 }, { 16, 17 }, { 26, 12 } }));
        painter.drawLine(QPointF(16, 17), QPointF(16, 27));
    });
}

} // namespace client
