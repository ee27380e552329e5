#include "packet/wire_schema.h"

#include "packet/stream_reader.h"
#include "packet/utf8.h"
#include "packet/wire_format.h"

#include <algorithm>
#include <set>

namespace packet::wire {

namespace {

using flatbuffers::FlatBufferBuilder;
using flatbuffers::Offset;

constexpr int int64Bits = 64;
constexpr int indexBits = 32;
constexpr int decimalBits = 128;
constexpr std::size_t longestName = 64 * 1024; ///< many fields can share the bytes of one name

struct WireType {
    arrow::Type type;
    Offset<void> table;
};

WireType writeType(FlatBufferBuilder &builder, const Field &field)
{
    switch (field.type) {
    case ColumnType::Text:
        return { arrow::Type::Utf8, arrow::CreateUtf8(builder).Union() };
    case ColumnType::Int64:
        return { arrow::Type::Int, arrow::CreateInt(builder, int64Bits, true).Union() };
    case ColumnType::Decimal:
        return { arrow::Type::Decimal, arrow::CreateDecimal(builder, decimalPrecision, field.scale, decimalBits).Union() };
    case ColumnType::Float64:
        return { arrow::Type::FloatingPoint, arrow::CreateFloatingPoint(builder, arrow::Precision::Double).Union() };
    case ColumnType::Timestamp:
        return { arrow::Type::Timestamp, arrow::CreateTimestamp(builder, arrow::TimeUnit::Second).Union() };
    }
    return {};
}

Offset<arrow::Field> writeField(FlatBufferBuilder &builder, const Field &field, std::int64_t column)
{
    const auto name = builder.CreateString(field.name);
    const WireType type = writeType(builder, field);
    Offset<arrow::DictionaryEncoding> dictionary;
    if (field.dictionary)
        dictionary = arrow::CreateDictionaryEncoding(builder, column, arrow::CreateInt(builder, indexBits, true));
    const auto children = builder.CreateVector(std::vector<Offset<arrow::Field>>());
    return arrow::CreateField(builder, name, true, type.type, type.table, dictionary, children);
}

[[noreturn]] void refuse(const std::string &name, const char *what) { throw StreamError("列“" + name + "”" + what); }

/// Nothing unless it is one of the types that a packet has.
std::optional<ColumnType> typeOf(const arrow::Field &field)
{
    if (field.type_as_Utf8())
        return ColumnType::Text;
    if (const auto *integer = field.type_as_Int(); integer && integer->bit_width() == int64Bits && integer->is_signed())
        return ColumnType::Int64;
    if (const auto *decimal = field.type_as_Decimal(); decimal && decimal->bit_width() == decimalBits
        && decimal->precision() == decimalPrecision && decimal->scale() >= 0 && decimal->scale() <= decimalPrecision)
        return ColumnType::Decimal;
    if (const auto *real = field.type_as_FloatingPoint(); real && real->precision() == arrow::Precision::Double)
        return ColumnType::Float64;
    if (const auto *time = field.type_as_Timestamp();
        time && time->unit() == arrow::TimeUnit::Second && (!time->timezone() || time->timezone()->size() == 0))
        return ColumnType::Timestamp;
    return std::nullopt;
}

bool isOurs(const arrow::DictionaryEncoding &encoding, std::int64_t column)
{
    const arrow::Int *const index = encoding.index_type();
    const bool indexFits = !index || (index->bit_width() == indexBits && index->is_signed());
    return indexFits && encoding.id() == column && encoding.dictionary_kind() == arrow::DictionaryKind::DenseArray;
}

Field readField(const arrow::Field &wire, std::int64_t column)
{
    const std::string_view name = wire.name() ? wire.name()->string_view() : std::string_view();
    if (name.size() > longestName || !isUtf8(name))
        throw StreamError("第 " + std::to_string(column + 1) + " 列的列名太长或不是有效的 UTF-8 编码");
    Field field;
    field.name = name;
    const auto type = typeOf(wire);
    if (!type || (wire.children() && wire.children()->size() > 0))
        refuse(field.name, "的类型不是查询结果可以有的类型");
    field.type = *type;
    if (*type == ColumnType::Decimal)
        field.scale = wire.type_as_Decimal()->scale();
    if (wire.dictionary()) {
        if (*type != ColumnType::Text || !isOurs(*wire.dictionary(), column))
            refuse(field.name, "的字典不是查询结果可以有的字典");
        field.dictionary = true;
    }
    return field;
}

std::string upperCase(std::string text)
{
    for (char &character : text) {
        if (character >= 'a' && character <= 'z')
            character = char(character - ('a' - 'A'));
    }
    return text;
}

} // namespace

Offset<arrow::KeyValue> keyValue(FlatBufferBuilder &builder, const char *key, const std::string &value)
{
    return arrow::CreateKeyValueDirect(builder, key, value.c_str());
}

std::string_view valueOf(const KeyValues *values, const char *key)
{
    if (!values)
        return {};
    const auto found = std::find_if(values->begin(), values->end(),
        [key](const arrow::KeyValue *entry) { return entry->key() && entry->value() && entry->key()->string_view() == key; });
    return found == values->end() ? std::string_view() : found->value()->string_view();
}

Offset<arrow::Schema> writeSchema(FlatBufferBuilder &builder, const std::vector<Field> &fields)
{
    std::vector<Offset<arrow::Field>> wireFields;
    for (const Field &field : fields)
        wireFields.push_back(writeField(builder, field, std::int64_t(wireFields.size())));
    const std::vector metadata { keyValue(builder, versionKey, version) };
    return arrow::CreateSchemaDirect(builder, arrow::Endianness::Little, &wireFields, &metadata);
}

std::vector<Field> readSchema(const arrow::Schema &schema, std::size_t mostColumns)
{
    if (valueOf(schema.custom_metadata(), versionKey) != version || schema.endianness() != arrow::Endianness::Little)
        throw StreamError("数据的格式或版本不是本程序能够读取的");
    if (!schema.fields() || schema.fields()->size() > mostColumns)
        throw StreamError("列数超过了 " + std::to_string(mostColumns));
    std::vector<Field> fields;
    std::set<std::string> taken;
    for (const arrow::Field *wire : *schema.fields()) {
        fields.push_back(readField(*wire, std::int64_t(fields.size())));
        if (!taken.insert(upperCase(fields.back().name)).second)
            refuse(fields.back().name, "出现了两次");
    }
    return fields;
}

} // namespace packet::wire
