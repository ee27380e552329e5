#pragma once

#include "engine/block_bytes.h"
#include "engine/dialect/connection.h"
#include "engine/sqlite/batch_worker.h"

#include "packet/builder.h"

#include <sqlite3.h>

#include <optional>

namespace engine {

/// Brings the rows of a SQLite statement into a packet. Declared types are read as Oracle's: DATE, NUMBER(p,s), VARCHAR2(n).
/// SQLite takes more time for a row than the packet does; results of more than a batch are therefore built on a second thread.
class SqliteRowReader {
public:
    /// The rows go where the job says.
    SqliteRowReader(sqlite3_stmt *statement, const Job &job);
    /// The row that the statement stands on; returns its bytes. Throws Error(Database) when a value of this or of an earlier row does not
    /// fit the type of its column.
    std::size_t addRow();
    packet::PacketPtr finish(packet::Extent extent);
    /// An estimate of what the rows of the block at hand take.
    std::size_t gatheredBytes() const { return 2 * m_blockBytes.bytes(); }

private:
    enum class Source : std::uint8_t {
        Computed, ///< any kind of value
        Number, ///< of a column declared so
        Text, ///< of a column that holds texts alone
    };
    static Source sourceOf(const packet::Builder::Column &column);
    void gatherText(sqlite3_value *value);
    void gather(sqlite3_value *value);
    void build(const RowBatch &batch);
    void addDouble(std::size_t column, double value);

    sqlite3_stmt *m_statement;
    std::vector<Source> m_sources;
    packet::Builder m_builder;
    RowBatch m_batch {};
    BlockBytes m_blockBytes;
    std::optional<BatchWorker> m_worker; ///< the last member: it stops before the builder goes
};

} // namespace engine
