#include "demo/generator.h"

#include "demo/fill_postgresql.h"
#include "demo/production.h"
#include "demo/sqlite_database.h"

#include <filesystem>
#include <stdexcept>

namespace demo {
namespace {

namespace fs = std::filesystem;

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

void fill(const Settings &settings, Database &database, const Progress &progress)
{
    database.run("begin");
    database.define(tableScript());
    const Network network(settings.seed);
    Writer writer(database);
    writer.writeNetwork(network);
    Production(settings, network, progress).write(writer);
    progress("汇总签收", 0, 0);
    writer.writeSums();
    progress("建立索引", 0, 0);
    database.define(indexScript());
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
    fillPostgresql(settings, told);
}

} // namespace demo
