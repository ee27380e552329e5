#pragma once

#include "engine/engine.h"

#include <filesystem>
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

/// A cell as text; "null" for null.
std::string cell(const packet::PacketPtr &packet, std::size_t column, std::size_t row);

} // namespace engine::test
