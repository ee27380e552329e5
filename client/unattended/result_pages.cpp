#include "client/unattended/result_pages.h"

#include "client/unattended/caption.h"
#include "platform/grid/db_grid.h"
#include "platform/toolkit/form.h"
#include "platform/toolkit/page_control.h"

#include <QAbstractButton>
#include <QRegularExpression>

#include <algorithm>

using namespace platform;

namespace client {
namespace {

QList<const TTabSheet *> sheetsOf(const TPageControl &pages)
{
    QList<const TTabSheet *> sheets;
    for (int index = 0; index < pages.count(); ++index) {
        if (pages.isTabVisible(index))
            sheets.append(qobject_cast<const TTabSheet *>(pages.widget(index)));
    }
    return sheets;
}

struct Wanted {
    int column;
    QString value;
};

int columnNamed(const TDBGridEh &grid, const QString &caption)
{
    for (int index = 0; index < grid.columnCount(); ++index) {
        if (grid.column(index).visible && plainCaption(grid.column(index).caption) == plainCaption(caption))
            return index;
    }
    throw notAmong(QStringLiteral("列"), caption, columnCaptions(grid));
}

/// A value may hold a comma: what follows one is another column only where it has a "=".
QList<Wanted> wantedOf(const TDBGridEh &grid, const QString &description)
{
    static const QRegularExpression comma(QStringLiteral("[,，](?=[^,，=]+=)"));
    QList<Wanted> wanted;
    for (const QString &part : description.split(comma)) {
        const qsizetype equals = part.indexOf(u'=');
        if (equals < 1)
            throw WrongRequest(QStringLiteral("“%1”不是“列=值”，请写如 扫描人=张三，班次=白班。").arg(part));
        const QString value = part.mid(equals + 1).trimmed();
        wanted.append({ columnNamed(grid, part.left(equals)), value == QStringLiteral("（空）") ? QString() : value });
    }
    return wanted;
}

bool isRow(const TDBGridEh &grid, int row, const QList<Wanted> &wanted)
{
    return std::ranges::all_of(wanted, [&](const Wanted &cell) {
        return grid.displayText(row, cell.column) == cell.value || grid.cellText(row, cell.column) == cell.value;
    });
}

/// The columns that tell rows apart, with their values in the first.
QString differences(const TDBGridEh &grid, const QList<int> &rows)
{
    QStringList parts;
    for (int column = 0; column < grid.columnCount(); ++column) {
        const QString first = grid.displayText(rows.first(), column);
        const bool differs = std::ranges::any_of(rows, [&](int row) { return grid.displayText(row, column) != first; });
        if (grid.column(column).visible && differs)
            parts.append(grid.column(column).caption + u'=' + first);
    }
    return parts.join(u'、');
}

} // namespace

QList<ResultPage> resultPages(const TForm &screen)
{
    const auto *pages = screen.findChild<const TPageControl *>();
    if (!pages) {
        const auto *grid = screen.findChild<const TDBGridEh *>();
        return grid ? QList<ResultPage> { { {}, grid } } : QList<ResultPage>();
    }
    QList<ResultPage> result;
    for (const TTabSheet *sheet : sheetsOf(*pages)) {
        if (const auto *grid = sheet->findChild<const TDBGridEh *>())
            result.append({ pages->tabText(pages->indexOf(sheet)), grid });
    }
    return result;
}

void showResultPage(const TForm &screen, const QString &caption)
{
    QStringList captions;
    for (const ResultPage &page : resultPages(screen))
        captions.append(page.caption);
    const qsizetype wanted = captionIndex(captions, caption);
    auto *pages = screen.findChild<TPageControl *>();
    if (wanted < 0 || !pages)
        throw notAmong(QStringLiteral("结果页"), caption, captions);
    for (int index = 0; index < pages->count(); ++index) {
        if (pages->tabText(index) == captions[wanted])
            pages->setActivePageIndex(index);
    }
}

QStringList columnCaptions(const TDBGridEh &grid)
{
    QStringList captions;
    for (int index = 0; index < grid.columnCount(); ++index) {
        if (grid.column(index).visible)
            captions.append(grid.column(index).caption);
    }
    return captions;
}

std::optional<GridCell> findRow(const TDBGridEh &grid, const QString &description, const QString &column)
{
    const QList<Wanted> wanted = wantedOf(grid, description);
    const int opened = column.isEmpty() ? wanted.last().column : columnNamed(grid, column);
    QList<int> rows;
    for (int row = 0; row < grid.rowCount(); ++row) {
        if (isRow(grid, row, wanted))
            rows.append(row);
    }
    if (rows.isEmpty())
        return std::nullopt;
    if (rows.size() > 1)
        throw Exception(QStringLiteral("“%1”这样的行有 %2 个，请再加上能区分它们的列，第一行的是 %3。")
                            .arg(description)
                            .arg(rows.size())
                            .arg(differences(grid, rows)));
    return GridCell { rows.first(), opened };
}

QList<QAbstractButton *> printButtons(const TForm &screen)
{
    QList<QAbstractButton *> found;
    for (auto *button : screen.findChildren<QAbstractButton *>()) {
        if (button->isVisibleTo(&screen) && !button->isCheckable() && button->text().contains(QStringLiteral("打印")))
            found.append(button);
    }
    return found;
}

qsizetype buttonIndex(const QStringList &captions, const QString &given)
{
    const auto plain = [](QString caption) {
        static const QRegularExpression marks(QStringLiteral("[()（）&\\s]"));
        return caption.remove(marks);
    };
    const auto found = std::ranges::find(captions, plain(given), plain);
    return found == captions.end() ? -1 : found - captions.begin();
}

} // namespace client
