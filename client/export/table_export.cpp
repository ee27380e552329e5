#include "client/export/table_export.h"

#include "platform/grid/db_grid.h"
#include "platform/toolkit/exception.h"

#include <QFileInfo>
#include <QSaveFile>

namespace {

constexpr qsizetype bytesBetweenWrites = 1 << 20;

bool isPlainNumber(const QString &text)
{
    bool isNumber = false;
    text.toDouble(&isNumber);
    return isNumber;
}

class TableWriter {
public:
    TableWriter(const QString &fileName, QChar separator)
        : m_file(fileName)
        , m_separator(separator)
    {
        if (!m_file.open(QIODevice::WriteOnly))
            fail();
        m_text = QChar(QChar::ByteOrderMark);
    }

    void row(const QStringList &cells)
    {
        m_text += cells.join(m_separator) + u"\r\n";
        if (m_text.size() > bytesBetweenWrites)
            flush();
    }
    void finish()
    {
        flush();
        if (!m_file.commit())
            fail();
    }

private:
    void flush()
    {
        if (m_file.write(m_text.toUtf8()) < 0)
            fail();
        m_text.clear();
    }
    [[noreturn]] void fail() const { throw Exception(QStringLiteral("无法写入文件“%1”：%2").arg(m_file.fileName(), m_file.errorString())); }

    QSaveFile m_file;
    QChar m_separator;
    QString m_text;
};

QList<int> visibleColumns(const TDBGridEh &grid)
{
    QList<int> columns;
    for (int column = 0; column < grid.columnCount(); ++column)
        if (grid.column(column).visible)
            columns.append(column);
    return columns;
}

} // namespace

QString csvCell(const QString &text)
{
    QString cell = text;
    if (!cell.isEmpty() && QStringLiteral("=+-@\t\r").contains(cell.front()) && !isPlainNumber(cell))
        cell.prepend(u'\t');
    const bool quoted = cell.contains(u'"') || cell.contains(u',') || cell.contains(u'\n') || cell.contains(u'\r') || cell.contains(u'\t');
    return quoted ? QString(u'"' + cell.replace(QStringLiteral("\""), QStringLiteral("\"\"")) + u'"') : cell;
}

int exportGrid(const TDBGridEh &grid, const QString &fileName)
{
    const bool tabbed = QFileInfo(fileName).suffix().compare(u"txt", Qt::CaseInsensitive) == 0;
    TableWriter writer(fileName, tabbed ? u'\t' : u',');
    const QList<int> columns = visibleColumns(grid);
    QStringList cells;
    for (const int column : columns)
        cells.append(csvCell(QString(grid.column(column).caption).replace(u'|', u' ')));
    writer.row(cells);
    for (int row = 0; row < grid.rowCount(); ++row) {
        cells.clear();
        for (const int column : columns)
            cells.append(csvCell(grid.cellText(row, column)));
        writer.row(cells);
    }
    writer.finish();
    return grid.rowCount();
}
