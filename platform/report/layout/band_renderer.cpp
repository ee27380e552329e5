#include "platform/report/layout/band_renderer.h"

#include "platform/dataset/data_set.h"

#include <QHash>

#include <algorithm>
#include <vector>

namespace report {

namespace {

constexpr int mostChartPoints = 60;

/// The bounds of what a band draws, for its stripe.
QRect extentOf(const Band &band)
{
    QRect extent;
    for (const Object &object : band.objects)
        extent |= object.box;
    return QRect(extent.x(), 0, extent.width(), band.height);
}

/// How a message calls an object.
QString titleOf(const Object &object) { return object.name.isEmpty() ? object.text.left(60) : object.name; }

} // namespace

BandRenderer::BandRenderer(const BoundReport &report, Resources &resources, StyleEvent styleEvent)
    : m_report(report)
    , m_resources(resources)
    , m_styleEvent(std::move(styleEvent))
{
}

RenderedBand BandRenderer::render(const BoundBand &band, const Context &context, int highest) const
{
    RenderedBand piece { .height = band.band->height };
    piece.primitives.reserve(qsizetype(band.objects.size()));
    for (const BoundObject &object : band.objects) {
        try {
            renderObject(object, context, piece.primitives);
        } catch (const Exception &exception) {
            throw Exception(QStringLiteral("报表不能排版：“%1”，第 %2 行数据：").arg(titleOf(*object.object)).arg(context.row + 1)
                + exception.message() + u"。");
        }
    }
    if (band.grows)
        grow(band, piece, highest);
    if (band.band->stripe.isValid() && context.row % 2 == 1) {
        QRect box = extentOf(*band.band);
        box.setHeight(piece.height);
        Page stripe;
        const quint16 source = band.objects.empty() ? quint16(0) : band.objects.front().source;
        Drawing(m_resources, source, stripe).rectangle({ .fill = band.band->stripe, .lineWidth = 0 }, box);
        piece.primitives.prepend(stripe.front());
    }
    return piece;
}

void BandRenderer::renderObject(const BoundObject &bound, const Context &context, Page &page) const
{
    const Object &object = *bound.object;
    switch (object.kind) {
    case ObjectKind::Memo:
        renderMemo(bound, context, page);
        break;
    case ObjectKind::Line:
        page.append({ .shape = Shape::Line, .style = bound.style, .source = bound.source, .box = object.box });
        break;
    case ObjectKind::Rectangle:
        page.append({ .shape = Shape::Rectangle, .style = bound.style, .source = bound.source, .box = object.box });
        break;
    case ObjectKind::Picture:
        page.append({ .shape = Shape::Image, .style = bound.style, .source = bound.source, .box = object.box, .image = bound.image });
        break;
    default:
        renderAddIn(bound, context, page);
        break;
    }
}

void BandRenderer::renderMemo(const BoundObject &bound, const Context &context, Page &page) const
{
    const Object &object = *bound.object;
    const Value value = bound.text.evaluate(context, object.style.format);
    Primitive primitive { .shape = Shape::Text, .style = bound.style, .source = bound.source, .box = object.box };
    if (value.isNumber())
        primitive.number = value.toText();
    const bool hidden = object.hideZero && value.isNumber() && value.toNumber()->units == 0;
    if (!hidden)
        primitive.text = bound.text.isOneExpression() ? formatted(value, object.style.format) : value.toText();
    if (object.wrap)
        primitive.text = m_faces.face(bound.style, object.style).wrapped(primitive.text, object.box.width());
    if (m_styleEvent && context.row >= 0) {
        Style style = object.style;
        m_styleEvent(context.row, object, style);
        primitive.style = m_resources.styleNumber(style);
    }
    page.append(primitive);
}

void BandRenderer::renderAddIn(const BoundObject &bound, const Context &context, Page &page) const
{
    AddInTask task { .object = *bound.object, .box = bound.object->box };
    task.text = bound.text.evaluate(context, {}).toText();
    if (bound.object->kind == ObjectKind::Chart)
        task.points = chartPoints(bound, context);
    Drawing drawing(m_resources, bound.source, page);
    bound.addIn->draw(task, drawing);
}

QList<std::pair<QString, double>> BandRenderer::chartPoints(const BoundObject &bound, Context context) const
{
    QList<std::pair<QString, packet::Decimal>> sums;
    QHash<QString, qsizetype> places;
    const int count = context.rows->recordCount();
    for (context.row = 0; context.row < count; ++context.row) {
        QString label = bound.label.evaluate(context, {}).toText();
        const auto value = bound.value.evaluate(context, {}).toNumber();
        // What comes after the largest number of labels is counted up in one.
        if (!places.contains(label) && places.size() >= mostChartPoints)
            label = QStringLiteral("其他");
        const auto place = places.constFind(label);
        if (place == places.cend()) {
            places.insert(label, sums.size());
            sums.append({ label, value.value_or(packet::Decimal {}) });
        } else if (value) {
            sums[*place].second = sums[*place].second + *value;
        }
    }
    QList<std::pair<QString, double>> points;
    for (const auto &[label, sum] : sums)
        points.append({ label, sum.toDouble() });
    return points;
}

void BandRenderer::grow(const BoundBand &band, RenderedBand &piece, int highest) const
{
    // Only memos grow, and each draws one primitive; add-ins may draw many, so primitives are found by their source.
    std::vector<Growth> growths;
    int most = 0;
    for (const BoundObject &bound : band.objects) {
        if (!bound.object->grow)
            continue;
        const auto primitive = std::find_if(piece.primitives.cbegin(), piece.primitives.cend(),
            [&bound](const Primitive &candidate) { return candidate.source == bound.source; });
        const int needed = m_faces.face(bound.style, bound.object->style).boxHeight(primitive->text) - bound.object->box.height();
        const int by = std::min(needed, highest - piece.height);
        if (by > 0)
            growths.push_back({ bound.object->box.y() + bound.object->box.height(), by });
        most = std::max(most, by);
    }
    if (most == 0)
        return;
    for (Primitive &primitive : piece.primitives) {
        int shift = 0;
        bool reaches = false;
        for (const Growth &growth : growths) {
            if (primitive.box.y() >= growth.below)
                shift = std::max(shift, growth.by);
            else
                reaches = reaches || primitive.box.y() + primitive.box.height() >= growth.below;
        }
        primitive.box.translate(0, shift);
        primitive.points.translate(0, shift);
        const bool stretches = primitive.shape != Shape::Image && primitive.shape != Shape::Polygon;
        if (shift == 0 && reaches && stretches)
            primitive.box.setHeight(primitive.box.height() + most);
    }
    piece.height += most;
}

} // namespace report
