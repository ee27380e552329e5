#include "server/base/json.h"

#include <nlohmann/json.hpp>

#include <set>

namespace server {

std::optional<std::map<std::string, std::string>> readJsonTexts(std::string_view json)
{
    using Json = nlohmann::json;
    std::set<std::string> names;
    bool namesDiffer = true;
    const auto look = [&](int, Json::parse_event_t event, Json &parsed) {
        if (event == Json::parse_event_t::key)
            namesDiffer = names.insert(parsed.get<std::string>()).second && namesDiffer;
        return true;
    };
    const Json object = Json::parse(json, look, false);
    if (!object.is_object() || !namesDiffer)
        return std::nullopt;
    std::map<std::string, std::string> texts;
    for (const auto &[name, value] : object.items()) {
        if (!value.is_string())
            return std::nullopt;
        texts.emplace(name, value.get<std::string>());
    }
    return texts;
}

std::string jsonText(std::string_view text)
{
    std::string out;
    appendJsonText(text, out);
    return out;
}

} // namespace server
