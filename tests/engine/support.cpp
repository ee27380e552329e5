#include "support.h"

#include "postgresql_server.h"

#include <sqlite3.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <fstream>
#include <sstream>

namespace engine::test {

TemporaryDatabase::TemporaryDatabase(const std::string &sql)
{
    static std::atomic<int> number = 0;
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    const std::string name = "kelvara-快件-" + std::to_string(now) + "-" + std::to_string(++number) + ".db";
    m_path = std::filesystem::temp_directory_path() / name;
    sqlite3 *database = nullptr;
    std::string error;
    if (sqlite3_open(m_path.string().c_str(), &database) != SQLITE_OK
        || sqlite3_exec(database, ("pragma synchronous=off;" + sql).c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        error = sqlite3_errmsg(database);
    sqlite3_close(database);
    if (!error.empty())
        throw std::runtime_error("cannot make the database: " + error);
}

TemporaryDatabase::~TemporaryDatabase()
{
    std::error_code ignored;
    std::filesystem::remove(m_path, ignored);
}

std::string nameOf(const testing::TestParamInfo<Kind> &kind)
{
    constexpr const char *names[] = { "Sqlite", "Postgresql", "OdbcPostgresql" };
    return names[int(kind.param)];
}

AnyDatabase::AnyDatabase(Kind kind, const std::string &sql)
{
    if (kind == Kind::Sqlite) {
        m_url = m_file.emplace(sql).url();
        return;
    }
    auto &server = PostgresqlServer::instance();
    const std::string name = server.makeDatabase(sql);
    m_url = kind == Kind::Postgresql ? server.readerUrl(name) : server.odbcUrl(name);
}

std::string fileText(const std::string &path)
{
    std::ifstream file(std::string(KELVARA_SOURCE_DIR) + "/" + path, std::ios::binary);
    if (!file)
        throw std::runtime_error("cannot read " + path);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::vector<std::string> paragraphs(const std::string &path)
{
    std::istringstream text(fileText(path));
    std::vector<std::string> found;
    std::string paragraph;
    std::string line;
    const auto finish = [&] {
        if (!paragraph.empty())
            found.push_back(std::move(paragraph));
        paragraph.clear();
    };
    while (std::getline(text, line)) {
        if (line.starts_with("--"))
            continue;
        if (line.empty())
            finish();
        else
            paragraph += paragraph.empty() ? line : "\n" + line;
    }
    finish();
    return found;
}

Outcome outcomeOf(Engine &engine, std::string_view sql, const QueryOptions &options)
{
    try {
        return { .packet = engine.query(sql, options) };
    } catch (const Error &error) {
        return { true, error.failure(), error.what(), nullptr };
    }
}

namespace {

std::string valueOf(const packet::Packet &packet, std::size_t column, std::size_t row)
{
    using packet::ColumnType;
    const ColumnType type = packet.schema()[column].type;
    std::string text;
    packet.appendText(column, row, text);
    if (type != ColumnType::Int64 && type != ColumnType::Decimal)
        return packet.isNull(column, row) ? "null" : "'" + text + "'";
    return packet.isNull(column, row) ? "null" : packet.decimal(column, row).rescaled(4).toString();
}

} // namespace

std::vector<std::string> sortedRows(const packet::Packet &packet)
{
    std::vector<std::string> rows(packet.rowCount());
    for (std::size_t row = 0; row < rows.size(); ++row) {
        for (std::size_t column = 0; column < packet.columnCount(); ++column)
            rows[row] += valueOf(packet, column, row) + "|";
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}

std::string cell(const packet::PacketPtr &packet, std::size_t column, std::size_t row)
{
    std::string text;
    packet->appendText(column, row, text);
    return packet->isNull(column, row) ? "null" : text;
}

} // namespace engine::test
