// Loads a million arrival scans from SQLite through the engine into a dataset, beside reading them bare and beside
// QSqlQueryModel; then compares how much memory the two hold.

#include "bench/pairs.h"
#include "bench/resident_memory.h"
#include "bench/scan_rows.h"

#include <QApplication>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>

namespace {

constexpr int rounds = 7;

void compareTimes(const QString &path)
{
    Database bare(path);
    bare.run(QStringLiteral("pragma cache_size=-65536")); // as the engine has it
    TSocketConnectionEx connection;
    connection.setChannel(engineChannel(path));
    const QSqlDatabase database = openForModel(path);
    std::vector<Side> sides {
        { "bare", [&] { readScansBare(bare.handle()); } },
        { "dataset",
            [&] {
                TClientDataSetEx dataSet;
                load(dataSet, connection);
            } },
        { "QSqlQueryModel",
            [&] {
                QSqlQueryModel model;
                load(model, database);
            } },
    };
    runInTurn(sides, rounds);
    for (const Side &side : sides)
        std::printf("%s: median %.0f ms\n", side.name.c_str(), median(side.milliseconds));
    printRatio(sides[1], sides[0], 1.3);
    printRatio(sides[1], sides[2], 1.0 / 3);
}

/// What one way of holding the rows costs, measured in a process of its own: this program, called with the way's name.
int printMemory(const QString &way, const QString &path)
{
    TSocketConnectionEx connection;
    TClientDataSetEx dataSet;
    QSqlQueryModel model;
    const qint64 before = residentBytes();
    if (way == u"dataset") {
        connection.setChannel(engineChannel(path));
        load(dataSet, connection);
        connection.setChannel(nullptr);
    } else {
        load(model, openForModel(path));
    }
    std::printf("%lld\n", static_cast<long long>(residentBytes() - before));
    return 0;
}

double memoryOf(const QString &way, const QString &path)
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), { way, path });
    if (!process.waitForFinished(-1) || process.exitCode() != 0)
        failWith(QString::fromUtf8(process.readAllStandardError()));
    return process.readAllStandardOutput().trimmed().toDouble();
}

void compareMemory(const QString &path)
{
    const double dataSet = memoryOf(QStringLiteral("dataset"), path);
    const double model = memoryOf(QStringLiteral("model"), path);
    std::printf("memory: dataset %.0f bytes a row, QSqlQueryModel %.0f bytes a row; ratio %.3f, goal 0.250: %s\n", dataSet / scanCount,
        model / scanCount, dataSet / model, dataSet <= model / 4 ? "reached" : "missed");
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    if (argc == 3)
        return printMemory(QString::fromLocal8Bit(argv[1]), QString::fromLocal8Bit(argv[2]));
    const bool wasQuiet = machineIsQuiet();
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("scans.db"));
    generateScans(path);
    compareTimes(path);
    compareMemory(path);
    if (!wasQuiet || !machineIsQuiet())
        std::printf("machine busy: these ratios are no verdict\n");
    return 0;
}
