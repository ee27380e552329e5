#pragma once

#include "server/statements/result_format.h"

#include <memory>

namespace server {

/// RFC 4180 with a byte order mark, lines ended by CR LF, a first line of column names; null is an empty cell. A cut result is no
/// result here, as nothing in the file could tell: end() throws ResultTooLarge then.
std::unique_ptr<packet::BlockSink> makeCsvSink(TakeBytes take);

/// {"columns":[{"name":...,"type":...},...],"rows":[[...],...],"rowCount":n,"truncated":false}; numbers exactly as they are,
/// times as "yyyy-mm-dd hh:mm:ss".
std::unique_ptr<packet::BlockSink> makeJsonSink(TakeBytes take);

} // namespace server
