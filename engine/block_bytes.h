#pragma once

#include "engine/engine.h"

namespace engine {

/// Counts the bytes of the rows of a block, which is held until it is complete: whoever multiplies texts in a statement must not
/// fill the memory.
class BlockBytes {
public:
    /// `memoryLimit`: of the statement. A block is held several times: as it arrives, as it is built and as it is sent.
    explicit BlockBytes(std::size_t memoryLimit)
        : m_most(memoryLimit / 8)
    {
    }
    std::size_t bytes() const { return m_bytes; }
    /// Throws Error(Database) when the block becomes too large.
    void addRow(std::size_t bytes)
    {
        m_bytes += bytes;
        if (m_bytes > m_most)
            throw Error(
                Failure::Database, "结果中的文字太长，连续 8192 行超过了 " + std::to_string(m_most >> 20) + " MB，请减少列数或缩短文字");
        if (++m_rows == packet::Packet::blockRows) {
            m_rows = 0;
            m_bytes = 0;
        }
    }

private:
    std::size_t m_most;
    std::uint32_t m_rows = 0; ///< of the block at hand
    std::size_t m_bytes = 0;
};

} // namespace engine
