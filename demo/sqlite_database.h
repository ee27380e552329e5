#pragma once

#include "demo/database.h"

#include <memory>

struct sqlite3;

namespace demo {

/// A new SQLite file. It is written without a journal.
class SqliteDatabase : public Database {
public:
    explicit SqliteDatabase(const std::string &path);
    void define(std::string_view script) override { run(script); }
    void run(std::string_view script) override;
    std::unique_ptr<Rows> rowsOf(std::string_view table) override;
    std::string startOfDay(std::string_view column) const override;

    sqlite3 *handle() const { return m_handle.get(); }
    [[noreturn]] void fail() const;

private:
    struct Close {
        void operator()(sqlite3 *handle) const;
    };
    std::unique_ptr<sqlite3, Close> m_handle;
};

} // namespace demo
