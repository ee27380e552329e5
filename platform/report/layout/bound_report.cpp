#include "platform/report/layout/bound_report.h"

#include "platform/dataset/data_set.h"
#include "platform/report/definition/report_file.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace report {

namespace {

constexpr qint64 largestPicture = 8 << 20;

bool isTotalAllowed(BandKind band)
{
    return band == BandKind::Master || band == BandKind::GroupFooter || band == BandKind::ColumnFooter || band == BandKind::Summary
        || band == BandKind::PageFooter;
}

int widthOf(const Definition &definition)
{
    int width = 0;
    for (const Band &band : definition.bands) {
        for (const Object &object : band.objects)
            width = std::max(width, object.box.x() + object.box.width());
    }
    return width;
}

} // namespace

/// Looks names up in the dataset, and enters totals with the scope that their band gives them.
class BoundReport::Names : public Binder {
public:
    Names(const TDataSet &rows, Totals &totals, BandKind band, int ownScope)
        : m_rows(rows)
        , m_totals(totals)
        , m_band(band)
        , m_ownScope(ownScope)
    {
    }

    int field(const QString &name) override
    {
        const TField *field = m_rows.findField(name);
        if (!field)
            throw SyntaxError { QStringLiteral("数据中没有字段“%1”").arg(name.left(40)) };
        return field->index();
    }

    int total(const TotalCall &call) override
    {
        if (!isTotalAllowed(m_band))
            throw SyntaxError { QStringLiteral("合计只能放在数据行、分组尾、栏尾、页脚或总结之内") };
        const bool atPageEnd = m_band == BandKind::ColumnFooter || m_band == BandKind::PageFooter;
        if (call.scope == Scope::OnePage && !atPageEnd)
            throw SyntaxError { QStringLiteral("本页合计只能放在栏尾或页脚之内") };
        if (call.scope == Scope::Group && m_ownScope < firstGroupScope)
            throw SyntaxError { QStringLiteral("分组合计只能放在分组之内") };
        // At the end of a page the row that begins the next one may be in the report's totals already.
        const int whole = atPageEnd ? placedScope : reportScope;
        return m_totals.add(call, call.scope == Scope::Report ? whole : call.scope == Scope::OnePage ? pageScope : m_ownScope);
    }

private:
    const TDataSet &m_rows;
    Totals &m_totals;
    BandKind m_band;
    int m_ownScope;
};

BoundReport::BoundReport(Definition definition, const TDataSet &rows, const QList<ReportAddIn *> &addIns, Resources &resources)
    : m_definition(fittedToWidth(std::move(definition)))
    , m_rows(rows)
    , m_addIns(addIns)
{
    const auto ofKind = [this](BandKind kind) {
        return std::count_if(
            m_definition.bands.cbegin(), m_definition.bands.cend(), [kind](const Band &band) { return band.kind == kind; });
    };
    m_groups.reserve(std::size_t(ofKind(BandKind::GroupHeader)));
    for (const Band &band : std::as_const(m_definition.bands)) {
        if (band.kind != BandKind::GroupHeader)
            continue;
        const int scope = firstGroupScope + int(m_groups.size());
        m_groups.push_back({ .header = { &band } });
        m_groups.back().by = boundTemplate(band.groupBy, QStringLiteral("by"), band.groupByPlace, band.kind, scope);
        bind(m_groups.back().header, band, scope, resources);
    }
    for (const Band &band : std::as_const(m_definition.bands)) {
        if (band.kind == BandKind::GroupHeader)
            continue;
        if (band.kind == BandKind::GroupFooter) {
            for (std::size_t level = 0; level < m_groups.size(); ++level) {
                if (m_groups[level].header.band->name == band.name)
                    bind(m_groups[level].footer.emplace(BoundBand { &band }), band, firstGroupScope + int(level), resources);
            }
            continue;
        }
        const bool atPageEnd = band.kind == BandKind::ColumnFooter || band.kind == BandKind::PageFooter;
        const bool inGroup = band.kind == BandKind::Master && !m_groups.empty();
        const int scope = atPageEnd ? pageScope : inGroup ? firstGroupScope + int(m_groups.size()) - 1 : reportScope;
        m_bands.emplace_back(band.kind, BoundBand { &band });
        bind(m_bands.back().second, band, scope, resources);
    }
}

const BoundBand *BoundReport::band(BandKind kind) const
{
    const auto found = std::find_if(m_bands.begin(), m_bands.end(), [kind](const auto &entry) { return entry.first == kind; });
    return found == m_bands.end() ? nullptr : &found->second;
}

void BoundReport::bind(BoundBand &bound, const Band &band, int scope, Resources &resources)
{
    for (const Object &object : band.objects) {
        bound.grows = bound.grows || object.grow;
        bound.objects.push_back(boundObject(object, band.kind, scope, resources));
    }
}

BoundObject BoundReport::boundObject(const Object &object, BandKind band, int scope, Resources &resources)
{
    BoundObject bound { .object = &object, .style = resources.styleNumber(object.style), .source = quint16(resources.sources.size()) };
    resources.sources.push_back({ object.name, band, m_definition.margins.left() + object.box.x(), object.box.width() });
    if (object.kind == ObjectKind::Picture) {
        bound.image = loadPicture(object, resources);
        return bound;
    }
    bound.text = boundTemplate(object.text, object.name, object.textPlace, band, scope);
    if (object.kind == ObjectKind::Chart) {
        bound.label = boundTemplate(object.label, object.name, object.labelPlace, BandKind::Title, scope);
        bound.value = boundTemplate(object.value, object.name, object.valuePlace, BandKind::Title, scope);
    }
    if (object.kind == ObjectKind::Chart || object.kind == ObjectKind::BarCode) {
        const auto addIn = std::find_if(
            m_addIns.begin(), m_addIns.end(), [&object](const ReportAddIn *candidate) { return candidate->kind() == object.kind; });
        if (addIn == m_addIns.end())
            fail(QStringLiteral("本程序没有登记条码或图表，无法打印这个对象"), object.name, object.place);
        bound.addIn = *addIn;
    }
    return bound;
}

Template BoundReport::boundTemplate(const QString &text, const QString &what, FilePosition place, BandKind band, int scope)
{
    try {
        Template result = Template::parse(text);
        Names names(m_rows, m_totals, band, scope);
        result.bind(names);
        return result;
    } catch (const SyntaxError &error) {
        fail(error.what, what, { place.line, place.column + error.offset });
    }
}

int BoundReport::loadPicture(const Object &object, Resources &resources) const
{
    QFile file(QFileInfo(m_definition.fileName).absolutePath() + u'/' + object.text);
    // Pictures stand beside the report, so that a report from elsewhere cannot show other files.
    if (object.text.isEmpty() || QFileInfo(object.text).fileName() != object.text)
        fail(QStringLiteral("图片应是报表文件旁边的文件名"), object.name, object.place);
    if (!file.open(QIODevice::ReadOnly) || file.size() > largestPicture)
        fail(QStringLiteral("图片“%1”打不开或超过 8 MB").arg(object.text), object.name, object.place);
    resources.images.append(file.readAll());
    return int(resources.images.size() - 1);
}

void BoundReport::fail(const QString &what, const QString &object, FilePosition place) const
{
    const QString named = object.isEmpty() ? what : QStringLiteral("“%1”：").arg(object) + what;
    if (place.line > 0)
        throw FileError(m_definition.fileName, place, named);
    throw Exception(QStringLiteral("报表不能排版：") + named + u"。");
}

Definition fittedToWidth(Definition definition)
{
    const int room = definition.paper.width() - definition.margins.left() - definition.margins.right();
    const int width = widthOf(definition);
    if (!definition.fitWidth || width <= room || room <= 0)
        return definition;
    const qreal scale = qreal(room) / width;
    const auto scaled = [scale](int length) { return int(std::floor(length * scale)); };
    for (Band &band : definition.bands) {
        band.height = int(std::ceil(band.height * scale));
        for (Object &object : band.objects) {
            const int left = scaled(object.box.x());
            const int top = scaled(object.box.y());
            // Edges are scaled, not widths, so that what touches still does.
            object.box
                = QRect(left, top, scaled(object.box.x() + object.box.width()) - left, scaled(object.box.y() + object.box.height()) - top);
            object.style.points *= scale;
        }
    }
    return definition;
}

} // namespace report
