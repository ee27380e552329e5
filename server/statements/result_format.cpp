#include "server/statements/result_format.h"

#include "server/base/text.h"
#include "server/statements/text_sink.h"

#include <charconv>

namespace server {

namespace {

std::optional<Format> formatNamed(std::string_view type)
{
    if (equalsIgnoringCase(type, "*/*") || equalsIgnoringCase(type, "application/*") || equalsIgnoringCase(type, arrowType))
        return Format::Arrow;
    if (equalsIgnoringCase(type, "application/json"))
        return Format::Json;
    if (equalsIgnoringCase(type, "text/csv") || equalsIgnoringCase(type, "text/*"))
        return Format::Csv;
    return std::nullopt;
}

/// The weight "q=0.5" among the parameters of a media range, 1 without.
double weightOf(std::string_view parameters)
{
    while (!parameters.empty()) {
        const auto parameter = nextPart(parameters, ';');
        if (!equalsIgnoringCase(parameter.substr(0, 2), "q="))
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

std::unique_ptr<packet::BlockSink> makeSink(Format format, packet::Compression compression, TakeBytes take)
{
    switch (format) {
    case Format::Csv:
        return makeCsvSink(std::move(take));
    case Format::Json:
        return makeJsonSink(std::move(take));
    case Format::Arrow:
        break;
    }
    return std::make_unique<packet::StreamWriter>(std::move(take), compression);
}

} // namespace server
