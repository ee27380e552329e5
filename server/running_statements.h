#pragma once

#include "server/statements/statement.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace server {

/// The statements that the server has at hand, for the operator to see and to end. To be used from any thread.
class RunningStatements {
public:
    struct Row {
        std::string id;
        std::string user;
        std::string address;
        std::string database;
        std::string sql;
        bool waits; ///< for a worker
        std::int64_t milliseconds; ///< since it came
        std::int64_t rows; ///< so far
    };

    void add(const std::shared_ptr<Statement> &statement, const std::string &address);
    void remove(const Statement &statement);
    /// The oldest first.
    std::vector<Row> rows() const;
    /// Ends a statement, whose user is told that the operator did. False when there is none of that name.
    bool end(const std::string &id);

private:
    struct Entry {
        std::weak_ptr<Statement> statement;
        std::string address;
    };
    mutable std::mutex m_mutex;
    std::map<std::string, Entry> m_entries; ///< by id
};

} // namespace server
