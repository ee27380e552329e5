#pragma once

#include "engine/engine.h"

namespace engine {

/// Counts the bytes of the rows of a block, which is held until it is complete: whoever multiplies texts in a statement must not
/// fill the memory.
class BlockBytes {
public:
    /// Throws Error(Database) when the block becomes too large.
    void addRow(std::size_t bytes)
    {
        m_bytes += bytes;
        if (m_bytes > most)
            throw Error(Failure::Database, "结果中的文字太长，连续 8192 行超过了 256 MB，请减少列数或缩短文字");
        if (++m_rows == packet::Packet::blockRows)
            *this = {};
    }

private:
    static constexpr std::size_t most = 256 * 1024 * 1024;
    std::uint32_t m_rows = 0; ///< of the block at hand
    std::size_t m_bytes = 0;
};

} // namespace engine
