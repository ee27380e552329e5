#pragma once

#include "engine/engine.h"

namespace engine {

/// Counts the bytes of the rows of a block, which is held until it is complete: whoever multiplies texts in a statement must not
/// fill the memory.
class BlockBytes {
public:
    explicit BlockBytes(std::size_t mostMegabytes)
        : m_mostMegabytes(mostMegabytes)
    {
    }
    /// Throws Error(Database) when the block becomes too large.
    void addRow(std::size_t bytes)
    {
        m_bytes += bytes;
        if (m_bytes > m_mostMegabytes * 1024 * 1024)
            throw Error(
                Failure::Database, "结果中的文字太长，连续 8192 行超过了 " + std::to_string(m_mostMegabytes) + " MB，请减少列数或缩短文字");
        if (++m_rows == packet::Packet::blockRows)
            *this = BlockBytes(m_mostMegabytes);
    }

private:
    std::size_t m_mostMegabytes;
    std::uint32_t m_rows = 0; ///< of the block at hand
    std::size_t m_bytes = 0;
};

} // namespace engine
