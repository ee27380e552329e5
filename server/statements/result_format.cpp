#include "server/statements/result_format.h"

#include "packet/stream_writer.h"
#include "server/statements/text_sink.h"

#include <algorithm>
#include <charconv>

namespace server {

namespace {

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
        text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t'))
        text.remove_suffix(1);
    return text;
}

/// Takes the text up to the next separator off the front of `rest`.
std::string_view nextPart(std::string_view &rest, char separator)
{
    const std::size_t end = std::min(rest.find(separator), rest.size());
    const auto part = trimmed(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return part;
}

bool sameIgnoringCase(std::string_view left, std::string_view small)
{
    const auto lower = [](char letter) { return letter >= 'A' && letter <= 'Z' ? char(letter + 32) : letter; };
    return std::equal(left.begin(), left.end(), small.begin(), small.end(), [&](char one, char other) { return lower(one) == other; });
}

std::optional<Format> formatNamed(std::string_view type)
{
    if (sameIgnoringCase(type, "*/*") || sameIgnoringCase(type, "application/*") || sameIgnoringCase(type, arrowType))
        return Format::Arrow;
    if (sameIgnoringCase(type, "application/json"))
        return Format::Json;
    if (sameIgnoringCase(type, "text/csv") || sameIgnoringCase(type, "text/*"))
        return Format::Csv;
    return std::nullopt;
}

/// The weight "q=0.5" among the parameters of a media range, 1 without.
double weightOf(std::string_view parameters)
{
    while (!parameters.empty()) {
        const auto parameter = nextPart(parameters, ';');
        if (!sameIgnoringCase(parameter.substr(0, 2), "q="))
            continue;
        double weight = 0;
        std::from_chars(parameter.data() + 2, parameter.data() + parameter.size(), weight);
        return weight;
    }
    return 1;
}

} // namespace

std::optional<Format> acceptedFormat(std::string_view accept)
{
    if (trimmed(accept).empty())
        return Format::Arrow;
    std::optional<Format> best;
    double bestWeight = 0;
    while (!accept.empty()) {
        auto range = nextPart(accept, ',');
        const auto format = formatNamed(nextPart(range, ';'));
        const double weight = weightOf(range);
        if (format && weight > bestWeight) {
            best = format;
            bestWeight = weight;
        }
    }
    return best;
}

std::string_view contentType(Format format)
{
    switch (format) {
    case Format::Csv:
        return "text/csv; charset=utf-8; header=present";
    case Format::Json:
        return "application/json";
    case Format::Arrow:
        break;
    }
    return arrowType;
}

std::unique_ptr<packet::BlockSink> makeSink(Format format, bool lz4, TakeBytes take)
{
    switch (format) {
    case Format::Csv:
        return makeCsvSink(std::move(take));
    case Format::Json:
        return makeJsonSink(std::move(take));
    case Format::Arrow:
        break;
    }
    return std::make_unique<packet::StreamWriter>(std::move(take), lz4);
}

} // namespace server
