#pragma once

#include "packet/packet.h"

#include "packet/arrow_generated.h"

/// The schema of a result in the metadata of a stream.
namespace packet::wire {

constexpr int decimalPrecision = 38;

using KeyValues = flatbuffers::Vector<flatbuffers::Offset<arrow::KeyValue>>;

flatbuffers::Offset<arrow::KeyValue> keyValue(flatbuffers::FlatBufferBuilder &builder, const char *key, const std::string &value);
/// The value of a key, which lives as long as the message; empty when it is missing.
std::string_view valueOf(const KeyValues *values, const char *key);

flatbuffers::Offset<arrow::Schema> writeSchema(flatbuffers::FlatBufferBuilder &builder, const std::vector<Field> &fields);
/// Throws StreamError when it is not the schema of a result.
std::vector<Field> readSchema(const arrow::Schema &schema, std::size_t mostColumns);

} // namespace packet::wire
