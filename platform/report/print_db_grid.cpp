#include "platform/report/print_db_grid.h"

#include "platform/grid/grid_filter.h"
#include "platform/report/chart_window.h"
#include "platform/report/grid_report.h"
#include "platform/report/grid_rows.h"
#include "platform/report/output/html_export.h"
#include "platform/report/output/page_exports.h"
#include "platform/report/output/rtf_export.h"
#include "platform/report/output/spreadsheet_export.h"
#include "platform/report/output/text_exports.h"
#include "platform/report/report.h"
#include "platform/toolkit/user_settings.h"

#include <functional>
#include <memory>
#include <utility>

using namespace platform;
using namespace report;

namespace {

/// A height of 14 pixels, as the screen has it.
QFont bandFont(QFont::Weight weight)
{
    QFont font(QStringLiteral("宋体"));
    font.setPixelSize(14);
    font.setWeight(weight);
    return font;
}

/// A colour of the screen on paper: its hue is to be seen, but the text on it is to be read and ink to be spared.
QColor onPaper(const QColor &color)
{
    const auto paler = [](int channel) { return 255 - (255 - channel) * 2 / 5; };
    return QColor(paler(color.red()), paler(color.green()), paler(color.blue()));
}

/// Screens are told apart by their titles, here and where printers are kept.
QString setupKey(const QString &title) { return QStringLiteral("page/") + title; }

/// A prepared report together with the rows that it reads.
class PreparedGrid : public PreparedReport {
public:
    using LayOut = std::function<std::unique_ptr<PreparedReport>()>;

    /// `inOnePiece`: empty when the parts are one. `chart`: null when the print has none.
    PreparedGrid(const QList<Definition> &parts, std::unique_ptr<GridRows> rows, std::unique_ptr<ReadyChart> chart, const StyleEvent &look,
        LayOut inOnePiece)
        : PreparedReport(parts, rows.get(), chart ? QList<ReportAddIn *> { chart.get() } : QList<ReportAddIn *>(), look)
        , m_rows(std::move(rows))
        , m_chart(std::move(chart))
        , m_inOnePiece(std::move(inOnePiece))
    {
    }
    std::unique_ptr<PreparedReport> inOnePiece() const override { return m_inOnePiece ? m_inOnePiece() : nullptr; }

private:
    std::unique_ptr<GridRows> m_rows;
    std::unique_ptr<ReadyChart> m_chart;
    LayOut m_inOnePiece;
};

/// Makes room for a chart below the title in all parts, and draws it in the first.
void addChart(QList<Definition> &parts, ChartKind kind)
{
    constexpr int height = 80 * millimetre;
    for (Definition &part : parts) {
        if (part.bands.first().kind != BandKind::Title)
            part.bands.prepend({ .kind = BandKind::Title });
        const int room = part.paper.width() - part.margins.left() - part.margins.right();
        Band &title = part.bands.first();
        Object chart { .kind = ObjectKind::Chart, .box = QRect(0, title.height + millimetre, room, height) };
        chart.chart = kind;
        if (&part == &parts.first())
            title.objects.append(chart);
        title.height += height + 3 * millimetre;
    }
}

} // namespace

TPrintDBGridEh::TPrintDBGridEh(QObject *parent)
    : QObject(parent)
    , m_header { .font = bandFont(QFont::Bold) }
    , m_footer { .right = QStringLiteral("第[PAGE#]页/共[TOTALPAGES]页"), .font = bandFont(QFont::Normal) }
{
}

std::unique_ptr<PreparedReport> TPrintDBGridEh::prepared() const { return prepared(m_setup); }

std::unique_ptr<PreparedReport> TPrintDBGridEh::prepared(const PageSetup &setup) const
{
    if (!m_grid || !m_grid->dataSet() || !m_grid->dataSet()->active() || m_grid->rowCount() == 0)
        throw Exception(QStringLiteral("没有可打印的数据！"));
    auto rows = std::make_unique<GridRows>(*m_grid);
    rows->open();
    if (rows->fieldCount() == 0)
        throw Exception(QStringLiteral("表格没有显示任何列，无法打印。"));
    const QPointer<TDBGridEh> grid = m_grid;
    const QColor paper = grid->palette().color(QPalette::Base);
    const QColor stripes = grid->palette().color(QPalette::AlternateBase);
    const auto look = [grid, paper, stripes](int row, const Object &object, Style &style) {
        bool isCell = false;
        const int column = object.name.toInt(&isCell);
        if (!isCell)
            return;
        // Only what an event coloured is worth ink.
        const QColor background = grid->cellBackground(row, column);
        if (background != paper && background != stripes)
            style.fill = onPaper(background);
    };
    QStringList notes = m_notes;
    PrintBand footer = m_footer;
    if (const QString notice = m_grid->dataSet()->truncationNotice(); !notice.isEmpty()) {
        notes.append(notice);
        footer.left = footer.left.isEmpty() ? notice : notice + u'　' + footer.left;
    }
    if (const QString notice = m_grid->dataSet()->filterNotice(); !notice.isEmpty())
        notes.append(notice + u"（" + m_grid->filter().description() + u"）");
    QList<Definition> parts = GridReport(*m_grid, setup).parts({ m_title, notes, m_header, footer });
    PreparedGrid::LayOut inOnePiece;
    if (parts.size() > 1) {
        PageSetup narrow = setup;
        narrow.wideColumns = WideColumns::Shrink;
        inOnePiece = [this, narrow] { return prepared(narrow); };
    }
    std::unique_ptr<ReadyChart> chart;
    if (const ChartWindow *shown = ChartWindow::of(*m_grid)) {
        chart = std::make_unique<ReadyChart>(shown->chart().data, shown->choice().kind);
        addChart(parts, shown->choice().kind);
    }
    auto prepared = std::make_unique<PreparedGrid>(parts, std::move(rows), std::move(chart), look, inOnePiece);
    prepared->prepareNextPage();
    return prepared;
}

void TPrintDBGridEh::useKeptSetup() { m_setup = PageSetup::fromMap(userSetting(setupKey(m_title)).toMap(), m_setup); }

void TPrintDBGridEh::preview(QWidget *parent)
{
    useKeptSetup();
    const auto layOut = [this](const PageSetup &setup) {
        auto pages = prepared(setup);
        m_setup = setup;
        keepUserSetting(setupKey(m_title), setup.toMap());
        return pages;
    };
    SpreadsheetExport spreadsheet;
    CsvExport csv;
    TextExport text;
    HtmlTableExport html;
    RtfExport rtf;
    JpegExport jpeg;
    report::showPreview(*prepared(), { &spreadsheet, &csv, &text, &html, &rtf, &jpeg }, allPreviewButtons, parent, { m_setup, layOut });
}

void TPrintDBGridEh::print(QWidget *parent)
{
    useKeptSetup();
    printPrepared(*prepared(), parent);
}
