#include "client/export/table_export.h"

#include "client/export/table_format.h"
#include "platform/dataset/client_data_set.h"
#include "platform/grid/copied_cells.h"
#include "platform/grid/db_grid.h"

#include <QDir>
#include <QSaveFile>

namespace {

constexpr int rowsBetweenWrites = 4096;

struct ExportColumn {
    int index; ///< in the grid
    bool number;
};

QList<ExportColumn> shownColumns(const TDBGridEh &grid)
{
    QList<ExportColumn> columns;
    for (int index = 0; index < grid.columnCount(); ++index) {
        if (!grid.column(index).visible)
            continue;
        const TField *field = grid.dataSet() ? grid.dataSet()->findField(grid.column(index).fieldName) : nullptr;
        const bool number = field && (field->type() == FieldType::Integer || field->type() == FieldType::Decimal);
        columns.append({ index, number });
    }
    return columns;
}

bool isTruncated(const TDBGridEh &grid)
{
    const auto *dataSet = qobject_cast<const TCustomClientDataSet *>(grid.dataSet());
    return dataSet && dataSet->truncated();
}

class ExportFile {
public:
    explicit ExportFile(const QString &fileName)
        : m_file(fileName)
    {
        if (!m_file.open(QIODevice::WriteOnly))
            fail();
    }
    void write(QByteArray &bytes)
    {
        if (m_file.write(bytes) != bytes.size())
            fail();
        bytes.truncate(0); // keeps the memory
    }
    void finish()
    {
        if (!m_file.commit())
            fail();
    }

private:
    [[noreturn]] void fail() const
    {
        throw Exception(QStringLiteral("无法写入文件“%1”：%2。请换一个位置，或先关闭正在使用它的程序。")
                            .arg(QDir::toNativeSeparators(m_file.fileName()), m_file.errorString()));
    }

    QSaveFile m_file;
};

} // namespace

int exportGrid(const TDBGridEh &grid, const QString &fileName, const std::function<void(int)> &progress)
{
    const auto format = TableFormat::of(fileName);
    const QList<ExportColumn> columns = shownColumns(grid);
    QList<ExportCell> cells;
    for (const ExportColumn &column : columns)
        cells.append({ plainTitle(grid.column(column.index).caption) });
    ExportFile file(fileName);
    QByteArray bytes;
    format->appendTitles(bytes, cells);
    const int rows = grid.rowCount();
    for (int row = 0; row < rows; ++row) {
        for (qsizetype position = 0; position < columns.size(); ++position)
            cells[position] = { grid.cellText(row, columns[position].index), columns[position].number };
        format->appendRow(bytes, cells);
        if ((row + 1) % rowsBetweenWrites == 0) {
            file.write(bytes);
            if (progress)
                progress(row + 1);
        }
    }
    format->appendEnd(bytes, isTruncated(grid));
    file.write(bytes);
    file.finish();
    return rows;
}

QString exportFilters() { return QStringLiteral("CSV 文件 (*.csv);;文本文件，制表符分隔 (*.txt);;JSON 文件 (*.json)"); }
