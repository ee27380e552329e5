#pragma once

#include "packet/block_sink.h"
#include "packet/stream_writer.h"

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string_view>

namespace server {

/// The forms in which a result can be sent.
enum class Format { Arrow, Csv, Json };

constexpr std::string_view arrowType = "application/vnd.apache.arrow.stream";

/// The format that an Accept header prefers; Arrow when it takes anything. Nothing when it takes none of them.
std::optional<Format> acceptedFormat(std::string_view accept);
std::string_view contentType(Format format);

/// What a limit of the server or of the format did not let through; what() is for the user.
class ResultTooLarge : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Takes the bytes of a result piece by piece; may throw.
using TakeBytes = std::function<void(std::span<const std::byte>)>;

/// Writes a result in that format. `compression` is of Arrow's bodies and means nothing to the others.
std::unique_ptr<packet::BlockSink> makeSink(Format format, packet::Compression compression, TakeBytes take);

} // namespace server
