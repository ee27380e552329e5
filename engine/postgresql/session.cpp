#include "engine/postgresql/session.h"

#include "engine/engine.h"

#include <algorithm>
#include <memory>

namespace engine {

namespace {

/// What holds for every session, whatever the URL says.
constexpr std::string_view sessionOptions = " -c default_transaction_read_only=on -c standard_conforming_strings=on -c "
                                            "client_min_messages=error -c datestyle=ISO -c intervalstyle=postgres";

/// What the URL may change: while the server compiles a statement it cannot be stopped, for a second or more.
constexpr std::string_view preferredOptions = "-c jit=off ";

/// What holds when the URL does not say otherwise: a server that is gone is noticed.
constexpr std::pair<std::string_view, const char *> defaults[] = {
    { "connect_timeout", "10" },
    { "keepalives_idle", "30" },
    { "keepalives_interval", "10" },
    { "keepalives_count", "3" },
    { "tcp_user_timeout", "60000" },
    { "application_name", "kelvara" },
};

struct FreeOptions {
    void operator()(PQconninfoOption *options) const { PQconninfoFree(options); }
};

/// The parameters of a URL, ours among them.
class Parameters {
public:
    explicit Parameters(const std::string &url)
    {
        // What the library says of a wrong address may repeat the password in it.
        m_options.reset(PQconninfoParse(url.c_str(), nullptr));
        if (!m_options)
            throw Error(
                Failure::Unavailable, "无法识别数据库地址，应写作 postgresql://用户:密码@主机/数据库；其中的 % 写作 %25，@ 写作 %40");
        for (const PQconninfoOption *option = m_options.get(); option->keyword; ++option)
            add(*option);
        m_keywords.push_back("client_encoding");
        m_values.push_back("UTF8");
        m_keywords.push_back(nullptr);
        m_values.push_back(nullptr);
    }
    PGconn *connect() const { return PQconnectdbParams(m_keywords.data(), m_values.data(), 0); }

private:
    void add(const PQconninfoOption &option)
    {
        const std::string_view keyword = option.keyword;
        const char *value = option.val;
        if (keyword == "options") {
            m_sessionOptions = std::string(preferredOptions).append(value ? value : "").append(sessionOptions);
            value = m_sessionOptions.c_str();
        }
        const auto *const ours
            = std::find_if(std::begin(defaults), std::end(defaults), [keyword](const auto &entry) { return entry.first == keyword; });
        if (!value && ours != std::end(defaults))
            value = ours->second;
        m_keywords.push_back(option.keyword);
        m_values.push_back(value);
    }

    std::unique_ptr<PQconninfoOption, FreeOptions> m_options;
    std::string m_sessionOptions;
    std::vector<const char *> m_keywords;
    std::vector<const char *> m_values;
};

} // namespace

PGconn *openSession(const std::string &url) { return Parameters(url).connect(); }

std::string trimmedMessage(const char *message)
{
    std::string text(message);
    text.erase(text.find_last_not_of(" \r\n") + 1);
    return text;
}

} // namespace engine
