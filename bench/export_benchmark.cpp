// Exports a million arrival scans as a grid shows them: to CSV beside the command sqlite3 -csv (package sqlite3) on the same rows, and a
// tenth of them to a workbook beside bare libxlsxwriter in its constant-memory mode, which writes the same cells.

#include "bench/pairs.h"
#include "bench/resident_memory.h"
#include "bench/scan_rows.h"
#include "client/export/table_export.h"
#include "platform/grid/db_grid.h"

#include <QApplication>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>

#include <xlsxwriter.h>

using namespace client;
using namespace platform;

namespace {

constexpr int rounds = 7;
constexpr int sheetRows = 100'000;

/// A grid over all fields of the dataset.
class ScanGrid {
public:
    explicit ScanGrid(TDataSet &dataSet)
    {
        m_source.setDataSet(&dataSet);
        m_grid.setDataSource(&m_source);
        QList<Column> columns;
        for (int field = 0; field < dataSet.fieldCount(); ++field)
            columns.append({ .fieldName = dataSet.field(field)->fieldName(), .caption = dataSet.field(field)->fieldName() });
        m_grid.setColumns(columns);
    }
    void exportTo(
        const QString &fileName, const std::function<void(std::int64_t)> &progress = [](std::int64_t) {}) const
    {
        writeTable(exportTable(m_grid, QStringLiteral("扫描"), {}), { fileName }, progress);
    }

private:
    TDataSource m_source;
    TDBGridEh m_grid;
};

void runCommand(const QString &database, const QString &fileName)
{
    QProcess command;
    command.setStandardOutputFile(fileName);
    command.start(
        QStringLiteral("sqlite3"), { QStringLiteral("-csv"), QStringLiteral("-header"), database, QString::fromLatin1(allScans) });
    if (!command.waitForFinished(-1) || command.exitCode() != 0)
        failWith(QStringLiteral("the command sqlite3 is needed (package sqlite3)"));
}

class BareSheet {
public:
    explicit BareSheet(packet::PacketPtr rows)
        : m_rows(std::move(rows))
    {
    }

    void write(const QString &fileName) const
    {
        lxw_workbook_options options {};
        options.constant_memory = LXW_TRUE;
        lxw_workbook *book = workbook_new_opt(fileName.toUtf8().constData(), &options);
        lxw_worksheet *sheet = workbook_add_worksheet(book, "scans");
        // One object a look: the library searches at every cell for another one like it.
        std::map<std::string, lxw_format *> looks;
        std::vector<lxw_format *> formats;
        for (const packet::Field &field : m_rows->schema()) {
            lxw_format *&look = looks[formatOf(field)];
            if (!look) {
                look = workbook_add_format(book);
                format_set_num_format(look, formatOf(field));
            }
            formats.push_back(look);
        }
        for (std::size_t row = 0; row < m_rows->rowCount(); ++row)
            writeRow(sheet, formats, row);
        if (workbook_close(book) != LXW_NO_ERROR)
            failWith(QStringLiteral("bare libxlsxwriter failed"));
    }

private:
    static const char *formatOf(const packet::Field &field)
    {
        switch (field.type) {
        case packet::ColumnType::Text:
            return "@";
        case packet::ColumnType::Timestamp:
            return "yyyy-mm-dd hh:mm:ss";
        case packet::ColumnType::Int64:
            return "0";
        default:
            return "#,##0.00";
        }
    }
    void writeRow(lxw_worksheet *sheet, const std::vector<lxw_format *> &formats, std::size_t row) const
    {
        for (std::size_t column = 0; column < formats.size(); ++column) {
            const auto line = lxw_row_t(row + 1);
            const auto place = lxw_col_t(column);
            if (m_rows->isNull(column, row))
                continue;
            const packet::ColumnType type = m_rows->schema()[column].type;
            if (type == packet::ColumnType::Text)
                worksheet_write_string(sheet, line, place, std::string(m_rows->text(column, row)).c_str(), formats[column]);
            else if (type == packet::ColumnType::Timestamp)
                worksheet_write_number(sheet, line, place, 25569 + double(m_rows->integer(column, row)) / 86400, formats[column]);
            else
                worksheet_write_number(sheet, line, place, m_rows->real(column, row), formats[column]);
        }
    }

    packet::PacketPtr m_rows;
};

void load(TClientDataSetEx &dataSet, TSocketConnectionEx &connection, int rows)
{
    dataSet.setRemoteServer(&connection);
    dataSet.setCommandText(QStringLiteral("select * from TAB_SCAN_COME where rownum<=%1").arg(rows));
    dataSet.open();
    if (dataSet.recordCount() != rows)
        failWith(QStringLiteral("loaded %1 rows").arg(dataSet.recordCount()));
}

void compare(std::vector<Side> sides, double goal, double most)
{
    runInTurn(sides, rounds);
    for (const Side &side : sides)
        std::printf("%s: median %.0f ms\n", side.name.c_str(), median(side.milliseconds));
    printRatio(sides[0], sides[1], goal);
    printRatio(sides[0], sides[1], most);
}

void measureMemory(const ScanGrid &grid, const QString &fileName)
{
    const std::int64_t before = residentBytes();
    std::int64_t most = before;
    grid.exportTo(fileName, [&](std::int64_t rows) {
        if (rows % 16'384 == 0)
            most = std::max(most, residentBytes());
    });
    std::printf("memory during the export of %d rows: %lld KB more\n", scanCount, static_cast<long long>((most - before) / 1024));
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    const bool wasQuiet = machineIsQuiet();
    const QTemporaryDir directory;
    const auto file = [&directory](const QString &name) -> QString { return directory.filePath(name); };
    generateScans(file(QStringLiteral("scans.db")));
    TSocketConnectionEx connection;
    connection.setChannel(engineChannel(file(QStringLiteral("scans.db"))));
    TClientDataSetEx all;
    load(all, connection);
    TClientDataSetEx some;
    load(some, connection, sheetRows);
    const ScanGrid allRows(all);
    const ScanGrid someRows(some);
    const BareSheet bare(some.data());

    std::printf("CSV of %d rows\n", scanCount);
    compare({ { "grid to CSV", [&] { allRows.exportTo(file(QStringLiteral("grid.csv"))); } },
                { "sqlite3 -csv", [&] { runCommand(file(QStringLiteral("scans.db")), file(QStringLiteral("rival.csv"))); } } },
        0.12, 0.3);
    std::printf("\nworkbook of %d rows\n", sheetRows);
    compare({ { "grid to workbook", [&] { someRows.exportTo(file(QStringLiteral("grid.xlsx"))); } },
                { "bare libxlsxwriter", [&] { bare.write(file(QStringLiteral("bare.xlsx"))); } } },
        1.1, 1.3);
    measureMemory(allRows, file(QStringLiteral("all.xlsx")));
    if (!wasQuiet || !machineIsQuiet())
        std::printf("machine busy: these ratios are no verdict\n");
    return 0;
}
