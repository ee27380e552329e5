#include "platform/report/layout/page_packing.h"

#include "platform/toolkit/exception.h"

#include <QIODevice>
#include <QtEndian>

#include <algorithm>
#include <cmath>

namespace report {

namespace {

constexpr auto streamVersion = QDataStream::Qt_6_0;
constexpr quint32 largestPage = 64 << 20;
constexpr quint32 mostPrimitives = 1'000'000;
constexpr quint32 mostPoints = 10'000;
constexpr quint32 mostResources = 65'536;

[[noreturn]] void failBroken() { throw Exception(QStringLiteral("报表页的内容已损坏")); }

quint32 readCount(QDataStream &stream, quint32 most)
{
    quint32 count = 0;
    stream >> count;
    if (stream.status() != QDataStream::Ok || count > most)
        failBroken();
    return count;
}

QDataStream &operator<<(QDataStream &stream, const Style &style)
{
    const quint8 flags = quint8(style.bold | style.italic << 1 | style.underline << 2);
    return stream << style.family << float(style.points) << flags << style.color << style.fill << style.sides << qint32(style.lineWidth)
                  << style.lineColor << quint8(style.lineStyle) << quint16(style.alignment.toInt()) << style.format;
}

QDataStream &operator>>(QDataStream &stream, Style &style)
{
    float points = 0;
    quint8 flags = 0;
    quint8 lineStyle = 0;
    quint16 alignment = 0;
    qint32 lineWidth = 0;
    stream >> style.family >> points >> flags >> style.color >> style.fill >> style.sides >> lineWidth >> style.lineColor >> lineStyle
        >> alignment >> style.format;
    if (!(points > 0 && points <= 200) || lineStyle > Qt::DashDotDotLine || lineWidth < 0 || lineWidth > 1000)
        failBroken();
    style.points = qreal(points);
    style.bold = flags & 1;
    style.italic = flags & 2;
    style.underline = flags & 4;
    style.lineWidth = lineWidth;
    style.lineStyle = Qt::PenStyle(lineStyle);
    style.alignment = Qt::Alignment::fromInt(alignment);
    return stream;
}

void write(QDataStream &stream, const Primitive &primitive)
{
    const quint8 flags = quint8((primitive.text.isEmpty() ? 0 : 1) | (primitive.number.isEmpty() ? 0 : 2));
    stream << quint8(primitive.shape) << flags << primitive.style << primitive.source;
    stream << qint32(primitive.box.x()) << qint32(primitive.box.y()) << qint32(primitive.box.width()) << qint32(primitive.box.height());
    if (!primitive.text.isEmpty())
        stream << primitive.text.toUtf8();
    if (!primitive.number.isEmpty())
        stream << primitive.number.toLatin1();
    if (primitive.shape == Shape::Polygon) {
        stream << quint32(primitive.points.size());
        for (const QPoint point : primitive.points)
            stream << point;
    }
    if (primitive.shape == Shape::Image)
        stream << qint32(primitive.image);
}

Primitive readPrimitive(QDataStream &stream, const Resources &resources)
{
    Primitive primitive;
    quint8 shape = 0;
    quint8 flags = 0;
    qint32 x = 0, y = 0, width = 0, height = 0;
    stream >> shape >> flags >> primitive.style >> primitive.source >> x >> y >> width >> height;
    primitive.shape = Shape(shape);
    primitive.box = QRect(x, y, width, height);
    QByteArray bytes;
    if (flags & 1) {
        stream >> bytes;
        primitive.text = QString::fromUtf8(bytes);
    }
    if (flags & 2) {
        stream >> bytes;
        primitive.number = QString::fromLatin1(bytes);
    }
    if (primitive.shape == Shape::Polygon) {
        primitive.points.resize(readCount(stream, mostPoints));
        for (QPoint &point : primitive.points)
            stream >> point;
    }
    if (primitive.shape == Shape::Image) {
        qint32 image = 0;
        stream >> image;
        primitive.image = image;
    }
    constexpr int farthest = 10'000 * millimetre;
    const bool placed
        = std::max({ std::abs(qint64(x)), std::abs(qint64(y)), std::abs(qint64(width)), std::abs(qint64(height)) }) <= farthest;
    if (stream.status() != QDataStream::Ok || shape > quint8(Shape::Image) || !placed || primitive.style >= resources.styles.size()
        || primitive.source >= resources.sources.size() || (primitive.shape == Shape::Image && primitive.image >= resources.images.size()))
        failBroken();
    return primitive;
}

} // namespace

QByteArray packedPage(const Page &page)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(streamVersion);
    stream << quint32(page.size());
    for (const Primitive &primitive : page)
        write(stream, primitive);
    QByteArray packed = qCompress(bytes, 1);
    // It comes with the room of the unpacked page.
    packed.squeeze();
    return packed;
}

Page unpackedPage(const QByteArray &bytes, const Resources &resources)
{
    if (bytes.size() < 5 || qFromBigEndian<quint32>(bytes.constData()) > largestPage)
        failBroken();
    const QByteArray unpacked = qUncompress(bytes);
    QDataStream stream(unpacked);
    stream.setVersion(streamVersion);
    Page page;
    for (quint32 left = readCount(stream, mostPrimitives); left > 0; --left)
        page.append(readPrimitive(stream, resources));
    return page;
}

void writeResources(QDataStream &stream, const Resources &resources)
{
    stream.setVersion(streamVersion);
    stream << quint32(resources.styles.size());
    for (const Style &style : resources.styles)
        stream << style;
    stream << quint32(resources.sources.size());
    for (const Source &source : resources.sources)
        stream << source.name << quint8(source.band) << qint32(source.left) << qint32(source.width);
    stream << quint32(resources.images.size());
    for (const QByteArray &image : resources.images)
        stream << image;
}

Resources readResources(QDataStream &stream)
{
    stream.setVersion(streamVersion);
    Resources resources;
    for (quint32 left = readCount(stream, mostResources); left > 0 && stream.status() == QDataStream::Ok; --left)
        stream >> resources.styles.emplace_back();
    for (quint32 left = readCount(stream, mostResources); left > 0 && stream.status() == QDataStream::Ok; --left) {
        Source &source = resources.sources.emplace_back();
        quint8 band = 0;
        qint32 sourceLeft = 0, width = 0;
        stream >> source.name >> band >> sourceLeft >> width;
        if (band > quint8(BandKind::PageFooter))
            failBroken();
        source.band = BandKind(band);
        source.left = sourceLeft;
        source.width = width;
    }
    for (quint32 left = readCount(stream, mostResources); left > 0 && stream.status() == QDataStream::Ok; --left)
        stream >> resources.images.emplace_back();
    if (stream.status() != QDataStream::Ok)
        failBroken();
    return resources;
}

} // namespace report
