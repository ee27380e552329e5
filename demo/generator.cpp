#include "demo/generator.h"

#include "demo/journey.h"
#include "demo/open_postgresql.h"
#include "demo/schedule.h"
#include "demo/schema.h"
#include "demo/sqlite_database.h"
#include "demo/writer.h"

#include <filesystem>
#include <stdexcept>

namespace demo {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view indexesBegin = "-- Indexes";

fs::path pathOf(const std::string &text) { return fs::path(std::u8string(text.begin(), text.end())); }

/// A file beside the target that becomes it, or goes away again.
class Draft {
public:
    explicit Draft(const std::string &target)
        : m_target(pathOf(target))
        , m_path(target + ".part")
    {
        fs::remove(pathOf(m_path));
    }
    Draft(const Draft &) = delete;
    Draft &operator=(const Draft &) = delete;
    ~Draft()
    {
        std::error_code ignored;
        fs::remove(pathOf(m_path), ignored);
    }

    const std::string &path() const { return m_path; }
    void finish() { fs::rename(pathOf(m_path), m_target); }

private:
    fs::path m_target;
    std::string m_path;
};

void writeShipments(const Settings &settings, const Network &network, Writer &writer, const Progress &progress)
{
    constexpr std::uint64_t batch = 20000;
    const Moment firstDay = settings.days > 0 ? startOfDay(settings.asOf) - (settings.days - 1) * day : startOfPreviousMonth(settings.asOf);
    const Schedule schedule(firstDay, settings.asOf - 2 * minute);
    for (std::uint64_t index = 0; index < settings.waybills; ++index) {
        if (index > 0 && index % batch == 0)
            progress("生成运单", index, settings.waybills);
        Random random(settings.seed, index + 1);
        Shipment shipment = newShipment(network, random, index, schedule.pickUp(index, settings.waybills, random));
        live(network, random, settings.asOf, shipment);
        writer.write(shipment);
    }
}

void fill(const Settings &settings, Database &database, const Progress &progress)
{
    const auto indexes = schema.find(indexesBegin);
    database.run("begin");
    database.define(schema.substr(0, indexes));
    const Network network(settings.seed);
    Writer writer(database);
    writer.writeNetwork(network);
    writeShipments(settings, network, writer, progress);
    progress("汇总签收", 0, 0);
    writer.writeSums();
    progress("建立索引", 0, 0);
    database.define(schema.substr(indexes));
    progress("统计索引", 0, 0);
    database.run("analyze");
    database.run("commit");
}

void generateFile(const Settings &settings, const Progress &progress)
{
    if (!settings.replaces && fs::exists(pathOf(settings.path)))
        throw std::runtime_error("文件“" + settings.path + "”已经存在。要替换它，请加 --force。");
    // Whether that works shows when the file is opened.
    std::error_code ignored;
    fs::create_directories(pathOf(settings.path).parent_path(), ignored);
    Draft draft(settings.path);
    {
        SqliteDatabase database(draft.path());
        fill(settings, database, progress);
    }
    draft.finish();
}

} // namespace

void generate(const Settings &settings, const Progress &progress)
{
    const Progress told = progress ? progress : [](auto &&...) {};
    if (!settings.path.starts_with("postgresql://") && !settings.path.starts_with("postgres://"))
        return generateFile(settings, told);
    fill(settings, *openPostgresql(settings.path, settings.replaces), told);
}

} // namespace demo
