#include "packet/wire_format.h"

#include <lz4frame.h>
#include <xxhash.h>

#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace packet::wire {

bool areTimestamps(std::span<const std::int64_t> seconds)
{
    bool sound = true;
    for (const std::int64_t second : seconds)
        sound &= second >= firstSecond && second <= lastSecond;
    return sound;
}

std::size_t countNulls(const void *validity, std::size_t rows)
{
    const auto *bytes = static_cast<const std::byte *>(validity);
    std::size_t values = 0;
    std::size_t row = 0;
    for (; row + 64 <= rows; row += 64) {
        std::uint64_t word;
        std::memcpy(&word, bytes + row / 8, sizeof word);
        values += std::size_t(std::popcount(word));
    }
    for (; row < rows; ++row)
        values += unsigned(bytes[row / 8] >> (row % 8)) & 1;
    return rows - values;
}

Checksum::Checksum()
    : m_state(XXH3_createState(), [](XXH3_state_s *state) { XXH3_freeState(state); })
{
    if (!m_state)
        throw std::bad_alloc();
    XXH3_64bits_reset(m_state.get());
}

Checksum::~Checksum() = default;

void Checksum::add(std::span<const std::byte> bytes) { XXH3_64bits_update(m_state.get(), bytes.data(), bytes.size()); }

std::string Checksum::text(std::string_view rows, std::string_view truncated)
{
    for (const std::string_view part : { rows, std::string_view(" "), truncated })
        add(std::as_bytes(std::span(part)));
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(XXH3_64bits_digest(m_state.get())));
    return digits;
}

std::size_t frameBound(std::size_t size) { return LZ4F_compressFrameBound(size, nullptr); }

std::size_t compressFrame(std::span<const std::byte> bytes, std::byte *frame)
{
    const std::size_t size = LZ4F_compressFrame(frame, frameBound(bytes.size()), bytes.data(), bytes.size(), nullptr);
    if (LZ4F_isError(size))
        throw std::runtime_error(std::string("LZ4: ") + LZ4F_getErrorName(size));
    return size;
}

bool decompressFrame(std::span<const std::byte> frame, std::span<std::byte> bytes)
{
    LZ4F_dctx *created = nullptr;
    if (LZ4F_isError(LZ4F_createDecompressionContext(&created, LZ4F_VERSION)))
        throw std::bad_alloc();
    const std::unique_ptr<LZ4F_dctx, LZ4F_errorCode_t (*)(LZ4F_dctx *)> context(created, LZ4F_freeDecompressionContext);
    std::size_t left = 1;
    while (left != 0) {
        std::size_t taken = frame.size();
        std::size_t made = bytes.size();
        left = LZ4F_decompress(context.get(), bytes.data(), &made, frame.data(), &taken, nullptr);
        if (LZ4F_isError(left) || (taken == 0 && made == 0))
            return false;
        frame = frame.subspan(taken);
        bytes = bytes.subspan(made);
    }
    return frame.empty() && bytes.empty();
}

} // namespace packet::wire
