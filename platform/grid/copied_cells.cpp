#include "platform/grid/copied_cells.h"

#include "platform/files/cell_text.h"
#include "platform/grid/db_grid.h"

#include <QMimeData>

#include <algorithm>

namespace platform {

namespace {

/// The rows and the visible columns that hold a selected cell.
struct CopiedRange {
    QList<QRect> ranges;
    QList<int> rows;
    QList<int> columns;

    explicit CopiedRange(const TDBGridEh &grid)
        : ranges(grid.selectedRanges())
    {
        if (ranges.isEmpty())
            ranges.append(QRect(grid.currentColumn(), grid.currentRow(), 1, 1));
        for (const QRect &range : std::as_const(ranges)) {
            for (int row = range.top(); row <= range.bottom(); ++row)
                rows.append(row);
            for (int column = range.left(); column <= range.right(); ++column) {
                if (grid.column(column).visible)
                    columns.append(column);
            }
        }
        for (QList<int> *list : { &rows, &columns }) {
            std::sort(list->begin(), list->end());
            list->erase(std::unique(list->begin(), list->end()), list->end());
        }
    }

    bool holds(int row, int column) const
    {
        return std::any_of(ranges.begin(), ranges.end(), [&](const QRect &range) { return range.contains(column, row); });
    }
};

/// The opening tag of a column's cells.
QString cellTag(const TDBGridEh &grid, int column)
{
    const TDataSet *dataSet = grid.dataSet();
    const TField *field = dataSet ? dataSet->findField(grid.column(column).fieldName) : nullptr;
    switch (field ? field->type() : FieldType::Integer) {
    case FieldType::Text:
        return u"<td style='" % QLatin1StringView(files::textCellStyle) % u"'>";
    case FieldType::DateTime:
        return u"<td style='" % QLatin1StringView(files::timeCellStyle) % u"'>";
    default:
        return QStringLiteral("<td>");
    }
}

void appendTitles(const TDBGridEh &grid, const CopiedRange &copied, files::TextBuffer &text, QString &html)
{
    QStringList titles;
    for (int column : copied.columns)
        titles.append(plainTitle(grid.column(column).caption));
    text += QString(titles.join(u'\t') + u"\r\n").toStdString();
    html += u"<tr>";
    for (const QString &title : std::as_const(titles))
        html += u"<th>" + title.toHtmlEscaped() + u"</th>";
    html += u"</tr>\n";
}

} // namespace

QString plainTitle(QString caption) { return caption.replace(u'|', u' '); }

std::unique_ptr<QMimeData> copiedCells(const TDBGridEh &grid, CopyTitles titles)
{
    const CopiedRange copied(grid);
    files::TextBuffer text;
    QString html = QStringLiteral("<html><head><meta charset=\"utf-8\"></head><body><table>\n");
    const bool withTitles = titles == CopyTitles::With;
    if (withTitles)
        appendTitles(grid, copied, text, html);
    QStringList tags;
    for (int column : copied.columns)
        tags.append(cellTag(grid, column));
    for (int row : copied.rows) {
        html += u"<tr>";
        for (int position = 0; position < copied.columns.size(); ++position) {
            const int column = copied.columns[position];
            const QString cell = copied.holds(row, column) ? grid.cellTextWithTicks(row, column) : QString();
            if (position > 0)
                text += '\t';
            files::appendClipboardCell(text, cell.toStdString());
            html += tags[position] + cell.toHtmlEscaped() + u"</td>";
        }
        html += u"</tr>\n";
        if (withTitles || copied.rows.size() > 1)
            text += "\r\n";
    }
    // Whoever takes all rows for all that there are must see it.
    if (const QString notice = grid.dataSet() ? grid.dataSet()->truncationNotice() : QString();
        !notice.isEmpty() && copied.rows.size() > 1 && copied.rows.size() == grid.rowCount()) {
        text += notice.toStdString() + "\r\n";
        html += u"<tr><td>" + notice + u"</td></tr>\n";
    }
    html += u"</table></body></html>";
    auto data = std::make_unique<QMimeData>();
    data->setText(QString::fromUtf8(text.view()));
    data->setHtml(html);
    return data;
}

} // namespace platform
