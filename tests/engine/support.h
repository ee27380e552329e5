#pragma once

#include "engine/pool/open_engine.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace engine::test {

/// A SQLite file in the temporary directory, with Han characters in its name; removed at the end.
class TemporaryDatabase {
public:
    /// Runs the given SQL in the new file.
    explicit TemporaryDatabase(const std::string &sql);
    TemporaryDatabase(const TemporaryDatabase &) = delete;
    ~TemporaryDatabase();

    std::string url() const { return "sqlite:" + m_path.string(); }
    const std::filesystem::path &path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

/// The databases that the same statements run on.
enum class Kind { Sqlite, Postgresql, OdbcPostgresql };
/// As names of the tests.
std::string nameOf(const testing::TestParamInfo<Kind> &kind);

/// A database of one of these kinds. Types in its SQL are Oracle's.
class AnyDatabase {
public:
    AnyDatabase(Kind kind, const std::string &sql);
    std::string url() const { return m_url; }

private:
    std::optional<TemporaryDatabase> m_file {};
    std::string m_url;
};

/// The text of a file of the repository.
std::string fileText(const std::string &path);
/// The paragraphs of a file, without the lines that begin with two dashes.
std::vector<std::string> paragraphs(const std::string &path);

/// How a query failed: the kind of failure and the message; empty when it did not.
struct Outcome {
    bool failed = false;
    Failure failure {};
    std::string message {};
    packet::PacketPtr packet {};
};
Outcome outcomeOf(Engine &engine, std::string_view sql, const QueryOptions &options = {});

/// The rows as lines, sorted: rows of equal sort keys may come in any order. A number is rounded to four digits after the point:
/// SQLite computes in binary fractions.
std::vector<std::string> sortedRows(const packet::Packet &packet);

/// A cell as text; "null" for null.
std::string cell(const packet::PacketPtr &packet, std::size_t column, std::size_t row);

} // namespace engine::test
