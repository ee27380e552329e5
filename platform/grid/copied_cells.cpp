#include "platform/grid/copied_cells.h"

#include "platform/grid/db_grid.h"

#include <QMimeData>

#include <algorithm>

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

QString quotedForTabs(const QString &text)
{
    if (!text.contains(u'\t') && !text.contains(u'\n') && !text.contains(u'\r'))
        return text;
    QString doubled = text;
    return u'"' % doubled.replace(u'"', QStringLiteral("\"\"")) % u'"';
}

/// The opening tag of a column's cells: the number format is what keeps a spreadsheet from reading codes as numbers.
QString cellTag(const TDBGridEh &grid, int column)
{
    const TDataSet *dataSet = grid.dataSet();
    const TField *field = dataSet ? dataSet->findField(grid.column(column).fieldName) : nullptr;
    switch (field ? field->type() : FieldType::Integer) {
    case FieldType::Text:
        return QStringLiteral("<td style='mso-number-format:\"\\@\"'>");
    case FieldType::DateTime:
        return QStringLiteral("<td style='mso-number-format:\"yyyy\\-mm\\-dd hh\\:mm\\:ss\"'>");
    default:
        return QStringLiteral("<td>");
    }
}

void appendTitles(const TDBGridEh &grid, const CopiedRange &copied, QString &text, QString &html)
{
    QStringList titles;
    for (int column : copied.columns)
        titles.append(plainTitle(grid.column(column).caption));
    text += titles.join(u'\t') + u"\r\n";
    html += u"<tr>";
    for (const QString &title : std::as_const(titles))
        html += u"<th>" + title.toHtmlEscaped() + u"</th>";
    html += u"</tr>\n";
}

} // namespace

QString plainTitle(QString caption) { return caption.replace(u'|', u' '); }

std::unique_ptr<QMimeData> copiedCells(const TDBGridEh &grid, bool titles)
{
    const CopiedRange copied(grid);
    QString text;
    QString html = QStringLiteral("<html><head><meta charset=\"utf-8\"></head><body><table>\n");
    if (titles)
        appendTitles(grid, copied, text, html);
    QStringList tags;
    for (int column : copied.columns)
        tags.append(cellTag(grid, column));
    for (int row : copied.rows) {
        html += u"<tr>";
        for (int position = 0; position < copied.columns.size(); ++position) {
            const int column = copied.columns[position];
            const QString cell = copied.holds(row, column) ? grid.cellText(row, column) : QString();
            if (position > 0)
                text += u'\t';
            text += quotedForTabs(cell);
            html += tags[position] + cell.toHtmlEscaped() + u"</td>";
        }
        html += u"</tr>\n";
        if (titles || copied.rows.size() > 1)
            text += u"\r\n";
    }
    html += u"</table></body></html>";
    auto data = std::make_unique<QMimeData>();
    data->setText(text);
    data->setHtml(html);
    return data;
}
