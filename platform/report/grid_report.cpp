#include "platform/report/grid_report.h"

#include "platform/dataset/data_set.h"
#include "platform/report/definition/template.h"
#include "platform/report/layout/text_face.h"

#include <algorithm>
#include <cmath>

using namespace platform;

namespace report {

namespace {

constexpr qreal screenDots = 96; ///< to an inch: what the widths of columns and the heights of fonts are meant for
constexpr qreal smallestPoints = 5;
/// A grid that would be made smaller than this on upright paper is printed across.
constexpr qreal smallestScale = 0.75;
constexpr QSize paper(21000, 29700);

int lengthOf(qreal pixels) { return int(std::lround(pixels * 25.4 * millimetre / screenDots)); }

Style styleOf(const QFont &font)
{
    const qreal points = font.pixelSize() > 0 ? font.pixelSize() * 72 / screenDots : font.pointSizeF();
    return { .family = font.family(), .points = points, .bold = font.bold(), .italic = font.italic(), .underline = font.underline() };
}

/// The marks that page headers and footers may hold stay expressions; every other bracket is text.
QString bandText(const QString &text)
{
    QString result = Template::literal(text);
    for (const QString &mark :
        { QStringLiteral("PAGE#]"), QStringLiteral("TOTALPAGES]"), QStringLiteral("DATE]"), QStringLiteral("TIME]") })
        result.replace(QStringLiteral("[[") + mark, u'[' + mark);
    return result;
}

Object memo(const QRect &box, const QString &text, const Style &style)
{
    Object object;
    object.box = box;
    object.text = text;
    object.style = style;
    return object;
}

} // namespace

Definition GridReport::definition() const
{
    Definition report;
    report.title = title;
    report.margins = QMargins(int(margins.left() * millimetre), int(margins.top() * millimetre), int(margins.right() * millimetre),
        int(margins.bottom() * millimetre));
    if (isAcross())
        report.paper.transpose();
    const int room = this->room();
    const QList<Slot> places = columnPlaces();
    if (!title.isEmpty() || !notes.isEmpty())
        report.bands.append(titleBand(room));
    report.bands.append(pageBand(BandKind::PageHeader, header, room));
    report.bands.append(columnTitles(places));
    report.bands.append(rowBand(places));
    if (grid.footerRowCount() > 0)
        report.bands.append(footerBand(places));
    report.bands.append(pageBand(BandKind::PageFooter, footer, room));
    return report;
}

int GridReport::wantedWidth() const
{
    int width = 0;
    for (int index = 0; index < grid.columnCount(); ++index)
        width += grid.column(index).visible ? lengthOf(grid.column(index).width) : 0;
    return std::max(1, width);
}

int GridReport::roomOn(int paperWidth) const { return paperWidth - int((margins.left() + margins.right()) * millimetre); }

bool GridReport::isAcross() const { return roomOn(paper.width()) < wantedWidth() * smallestScale; }

int GridReport::room() const { return roomOn(isAcross() ? paper.height() : paper.width()); }

qreal GridReport::scale() const { return std::min(1.0, room() / qreal(wantedWidth())); }

QList<GridReport::Slot> GridReport::columnPlaces() const
{
    QList<Slot> places;
    int left = 0;
    for (int index = 0; index < grid.columnCount(); ++index) {
        if (!grid.column(index).visible)
            continue;
        const int width = lengthOf(grid.column(index).width);
        places.append({ index, left, width });
        left += width;
    }
    const qreal scale = this->scale();
    for (Slot &place : places) {
        const int right = int((place.left + place.width) * scale);
        place.left = int(place.left * scale);
        place.width = right - place.left;
    }
    return places;
}

Style GridReport::cellStyle() const
{
    Style style = styleOf(grid.designedFont());
    style.family = QStringLiteral("宋体");
    style.points = std::max(smallestPoints, style.points * scale());
    style.sides = AllSides;
    style.lineWidth = 8;
    style.lineColor = QColor(0x80, 0x86, 0x8e);
    return style;
}

Band GridReport::titleBand(int room) const
{
    Style style { .family = QStringLiteral("黑体"), .points = 14, .bold = true, .alignment = Qt::AlignHCenter | Qt::AlignVCenter };
    Band band { .kind = BandKind::Title };
    const auto addLine = [&](const QString &text, int space) {
        const int height = lineHeight(style) + space;
        band.objects.append(memo(QRect(0, band.height, room, height), Template::literal(text), style));
        band.height += height;
    };
    if (!title.isEmpty())
        addLine(title, 2 * millimetre);
    style.points = 10;
    for (const QString &note : notes)
        addLine(note, millimetre);
    return band;
}

Band GridReport::pageBand(BandKind kind, const PrintBand &source, int room) const
{
    Band band { .kind = kind };
    Style style = styleOf(source.font);
    const bool empty = source.left.isEmpty() && source.centre.isEmpty() && source.right.isEmpty();
    const int height = empty ? 0 : lineHeight(style) + millimetre;
    const int textTop = kind == BandKind::PageFooter ? millimetre : 0;
    band.height = height + millimetre;
    const std::pair<QString, Qt::AlignmentFlag> texts[]
        = { { source.left, Qt::AlignLeft }, { source.centre, Qt::AlignHCenter }, { source.right, Qt::AlignRight } };
    for (const auto &[text, alignment] : texts) {
        style.alignment = alignment | Qt::AlignVCenter;
        if (!text.isEmpty())
            band.objects.append(memo(QRect(0, textTop, room, height), bandText(text), style));
    }
    if (!empty && source.line == PrintLine::Single) {
        Object line;
        line.kind = ObjectKind::Line;
        line.box = QRect(0, kind == BandKind::PageFooter ? millimetre / 2 : height, room, 0);
        band.objects.append(line);
    }
    return band;
}

Band GridReport::columnTitles(const QList<Slot> &places) const
{
    Style style = cellStyle();
    style.bold = true;
    style.fill = QColor(0xe8, 0xed, 0xf3);
    style.alignment = Qt::AlignHCenter | Qt::AlignVCenter;
    const auto upper = [this](const Slot &place) {
        const QString &caption = grid.column(place.column).caption;
        const qsizetype bar = caption.indexOf(u'|');
        return bar < 0 ? QString() : caption.left(bar);
    };
    const bool twoLevels = std::any_of(places.begin(), places.end(), [&](const Slot &place) { return !upper(place).isEmpty(); });
    const int level = lineHeight(style) + millimetre;
    Band band { .kind = BandKind::ColumnHeader, .height = twoLevels ? 2 * level : level };
    for (qsizetype index = 0; index < places.size(); ++index) {
        const Slot &place = places[index];
        const QString group = upper(place);
        const QString own = grid.column(place.column).caption.mid(group.isEmpty() ? 0 : group.size() + 1);
        const int top = group.isEmpty() ? 0 : level;
        band.objects.append(memo(QRect(place.left, top, place.width, band.height - top), Template::literal(own), style));
        if (group.isEmpty() || (index > 0 && upper(places[index - 1]) == group))
            continue;
        qsizetype last = index;
        while (last + 1 < places.size() && upper(places[last + 1]) == group)
            ++last;
        const int width = places[last].left + places[last].width - place.left;
        band.objects.append(memo(QRect(place.left, 0, width, level), Template::literal(group), style));
    }
    return band;
}

Band GridReport::rowBand(const QList<Slot> &places) const
{
    const TDataSet *rows = grid.dataSet();
    Style style = cellStyle();
    Band band { .kind = BandKind::Master, .height = lineHeight(style) + millimetre };
    for (const Slot &place : places) {
        const Column &column = grid.column(place.column);
        const TField *field = rows ? rows->findField(column.fieldName) : nullptr;
        const bool numeric = field && field->type() != FieldType::Text && field->type() != FieldType::DateTime;
        const Qt::Alignment across = column.alignment & Qt::AlignHorizontal_Mask;
        style.alignment = Qt::AlignVCenter
            | (column.isCheckBox() ? Qt::AlignHCenter
                    : across       ? across
                    : numeric      ? Qt::AlignRight
                                   : Qt::AlignLeft);
        style.format = grid.displayFormat(place.column);
        Object cell = memo(QRect(place.left, 0, place.width, band.height), QStringLiteral("[C%1]").arg(place.column), style);
        cell.name = QString::number(place.column);
        band.objects.append(cell);
    }
    return band;
}

Band GridReport::footerBand(const QList<Slot> &places) const
{
    Style style = cellStyle();
    style.bold = true;
    const int level = lineHeight(style) + millimetre;
    Band band { .kind = BandKind::Summary, .height = level * grid.footerRowCount() };
    for (int row = 0; row < grid.footerRowCount(); ++row) {
        for (const Slot &place : places) {
            style.alignment = Qt::AlignVCenter | grid.footerAlignment(row, place.column);
            const QRect box(place.left, row * level, place.width, level);
            band.objects.append(memo(box, Template::literal(grid.footerDisplayText(row, place.column)), style));
        }
    }
    return band;
}

} // namespace report
