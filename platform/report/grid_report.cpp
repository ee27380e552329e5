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
constexpr qreal smallestUpright = 0.75;
/// Smaller than this nobody likes to read; the columns go on other pages then, in a size that is read well.
constexpr qreal smallestReadable = 0.7;
constexpr qreal dividedScale = 0.8;

int lengthOf(qreal pixels) { return int(std::lround(pixels * 25.4 * millimetre / screenDots)); }

Style styleOf(const QFont &font)
{
    const qreal points = font.pixelSize() > 0 ? font.pixelSize() * 72 / screenDots : font.pointSizeF();
    return { .family = font.family(), .points = points, .bold = font.bold(), .italic = font.italic(), .underline = font.underline() };
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

GridReport::GridReport(const TDBGridEh &grid, const PageSetup &setup)
    : m_grid(grid)
    , m_setup(setup)
    , m_paper(setup.paper)
{
    Slots columns;
    int wanted = 0;
    for (int index = 0; index < m_grid.columnCount(); ++index) {
        if (!m_grid.column(index).visible)
            continue;
        columns.append({ index, wanted, lengthOf(m_grid.column(index).width) });
        wanted += columns.last().width;
    }
    turnPaper(wanted);
    const qreal fitted = std::min(1.0, m_room / qreal(std::max(1, wanted)));
    const qreal least = m_setup.wideColumns == WideColumns::Shrink ? 0 : m_setup.wideColumns == WideColumns::Split ? 1 : smallestReadable;
    m_scale = fitted >= least ? fitted : dividedScale;
    // From the places, not from the widths: rounded ones would add up to more than the page.
    for (Slot &place : columns) {
        const int right = int((place.left + place.width) * m_scale);
        place.left = int(place.left * m_scale);
        place.width = right - place.left;
    }
    if (fitted >= least)
        m_parts.append(columns);
    else
        divide(columns);
}

void GridReport::turnPaper(int wantedWidth)
{
    const auto roomOn = [this](int width) { return width - int((m_setup.margins.left() + m_setup.margins.right()) * millimetre); };
    const bool wantsAcross = m_paper.width() < m_paper.height() && roomOn(m_paper.width()) < wantedWidth * smallestUpright;
    if (m_setup.turn == Turn::Across || (m_setup.turn == Turn::Automatic && wantsAcross))
        m_paper.transpose();
    m_room = roomOn(m_paper.width());
}

/// What tells the rows apart stands on every part: the frozen columns, or all up to the first that shows data. It leaves half of the page.
void GridReport::divide(const Slots &columns)
{
    Slots repeated;
    int repeatedWidth = 0;
    const auto tells = [&](const Slot &place) {
        const bool frozen = m_grid.isFrozen(place.column);
        const bool noneShowsData
            = std::ranges::all_of(repeated, [this](const Slot &each) { return m_grid.column(each.column).fieldName.isEmpty(); });
        return (frozen || (m_grid.frozenColumns() == 0 && noneShowsData)) && repeatedWidth + place.width <= m_room / 2;
    };
    auto place = columns.begin();
    for (; place != columns.end() && tells(*place); ++place) {
        repeated.append({ place->column, repeatedWidth, place->width });
        repeatedWidth += place->width;
    }
    int left = 0;
    for (; place != columns.end(); ++place) {
        const int width = std::min(place->width, m_room - repeatedWidth);
        if (m_parts.isEmpty() || left + width > m_room) {
            m_parts.append(repeated);
            left = repeatedWidth;
        }
        m_parts.last().append({ place->column, left, width });
        left += width;
    }
}

QList<Definition> GridReport::parts(const Texts &texts) const
{
    QList<Definition> parts;
    for (qsizetype number = 0; number < m_parts.size(); ++number)
        parts.append(part(number, texts));
    return parts;
}

Definition GridReport::part(qsizetype number, const Texts &texts) const
{
    const Slots &places = m_parts[number];
    Definition report;
    report.title = texts.title;
    report.paper = m_paper;
    const QMarginsF margins = m_setup.margins * millimetre;
    report.margins = QMargins(int(margins.left()), int(margins.top()), int(margins.right()), int(margins.bottom()));
    if (!texts.title.isEmpty() || !texts.notes.isEmpty())
        report.bands.append(titleBand(texts));
    report.bands.append(pageBand(BandKind::PageHeader, texts.header, number));
    report.bands.append(columnTitles(places));
    report.bands.append(rowBand(places));
    if (m_grid.footerRowCount() > 0)
        report.bands.append(footerBand(places));
    report.bands.append(pageBand(BandKind::PageFooter, texts.footer, number));
    return report;
}

/// The marks that page headers and footers may hold stay expressions; every other bracket is text. The pages of the parts follow one
/// another, so each part counts in steps.
QString GridReport::bandText(const QString &text, qsizetype part) const
{
    const QString page
        = m_parts.size() == 1 ? QStringLiteral("[PAGE#]") : QStringLiteral("[(PAGE#-1)*%1+%2]").arg(m_parts.size()).arg(part + 1);
    QString result = Template::literal(text).replace(QStringLiteral("[[PAGE#]"), page);
    for (const QString &mark : { QStringLiteral("TOTALPAGES]"), QStringLiteral("DATE]"), QStringLiteral("TIME]") })
        result.replace(QStringLiteral("[[") + mark, u'[' + mark);
    return result;
}

Style GridReport::cellStyle() const
{
    Style style = styleOf(m_grid.designedFont());
    style.family = QStringLiteral("宋体");
    style.points = std::max(smallestPoints, style.points * m_scale);
    style.sides = AllSides;
    style.lineWidth = 8;
    style.lineColor = QColor(0x80, 0x86, 0x8e);
    return style;
}

Band GridReport::titleBand(const Texts &texts) const
{
    Style style { .family = QStringLiteral("黑体"), .points = 14, .bold = true, .alignment = Qt::AlignHCenter | Qt::AlignVCenter };
    Band band { .kind = BandKind::Title };
    const auto addLine = [&](const QString &text, int space) {
        Object line = memo(QRect(0, band.height, m_room, lineHeight(style) + space), Template::literal(text), style);
        line.wrap = true;
        line.grow = true;
        band.height += line.box.height();
        band.objects.append(line);
    };
    if (!texts.title.isEmpty())
        addLine(texts.title, 2 * millimetre);
    style = { .alignment = Qt::AlignLeft | Qt::AlignVCenter };
    for (const QString &note : texts.notes)
        addLine(note, millimetre / 2);
    return band;
}

Band GridReport::pageBand(BandKind kind, const PrintBand &source, qsizetype part) const
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
            band.objects.append(memo(QRect(0, textTop, m_room, height), bandText(text, part), style));
    }
    if (!empty && source.line == PrintLine::Single) {
        Object line;
        line.kind = ObjectKind::Line;
        line.box = QRect(0, kind == BandKind::PageFooter ? millimetre / 2 : height, m_room, 0);
        band.objects.append(line);
    }
    return band;
}

Band GridReport::columnTitles(const Slots &places) const
{
    Style style = cellStyle();
    style.bold = true;
    style.fill = QColor(0xe8, 0xed, 0xf3);
    style.alignment = Qt::AlignHCenter | Qt::AlignVCenter;
    const auto upper = [this](const Slot &place) {
        const QString &caption = m_grid.column(place.column).caption;
        const qsizetype bar = caption.indexOf(u'|');
        return bar < 0 ? QString() : caption.left(bar);
    };
    const bool twoLevels = std::any_of(places.begin(), places.end(), [&](const Slot &place) { return !upper(place).isEmpty(); });
    const int level = lineHeight(style) + millimetre;
    Band band { .kind = BandKind::ColumnHeader, .height = twoLevels ? 2 * level : level };
    for (qsizetype index = 0; index < places.size(); ++index) {
        const Slot &place = places[index];
        const QString group = upper(place);
        const QString own = m_grid.column(place.column).caption.mid(group.isEmpty() ? 0 : group.size() + 1);
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

Band GridReport::rowBand(const Slots &places) const
{
    const TDataSet *rows = m_grid.dataSet();
    Style style = cellStyle();
    Band band { .kind = BandKind::Master, .height = lineHeight(style) + millimetre };
    for (const Slot &place : places) {
        const Column &column = m_grid.column(place.column);
        const TField *field = rows ? rows->findField(column.fieldName) : nullptr;
        const bool numeric = field && field->type() != FieldType::Text && field->type() != FieldType::DateTime;
        const Qt::Alignment across = column.alignment & Qt::AlignHorizontal_Mask;
        style.alignment = Qt::AlignVCenter
            | (column.isCheckBox() ? Qt::AlignHCenter
                    : across       ? across
                    : numeric      ? Qt::AlignRight
                                   : Qt::AlignLeft);
        style.format = m_grid.displayFormat(place.column);
        Object cell = memo(QRect(place.left, 0, place.width, band.height), QStringLiteral("[C%1]").arg(place.column), style);
        cell.name = QString::number(place.column);
        band.objects.append(cell);
    }
    return band;
}

Band GridReport::footerBand(const Slots &places) const
{
    Style style = cellStyle();
    style.bold = true;
    const int level = lineHeight(style) + millimetre;
    Band band { .kind = BandKind::Summary, .height = level * m_grid.footerRowCount() };
    for (int row = 0; row < m_grid.footerRowCount(); ++row) {
        for (const Slot &place : places) {
            style.alignment = Qt::AlignVCenter | m_grid.footerAlignment(row, place.column);
            const QRect box(place.left, row * level, place.width, level);
            band.objects.append(memo(box, Template::literal(m_grid.footerDisplayText(row, place.column)), style));
        }
    }
    return band;
}

} // namespace report
