#include "server_client/server_session.h"

#include "packet/stream_reader.h"

#include <nlohmann/json.hpp>

namespace server_client {

namespace {

enum Status { ok = 200, unauthorized = 401, unavailable = 503 };

constexpr std::size_t largestReply = 64 * 1024; ///< of what is no result

/// A text of a JSON object; nothing when there is none.
std::optional<std::string> jsonText(const std::string &object, const char *name)
{
    const auto read = nlohmann::json::parse(object, nullptr, false);
    if (!read.is_object() || !read.contains(name) || !read[name].is_string())
        return std::nullopt;
    return read[name].get<std::string>();
}

std::shared_ptr<const Trust> trustOf(const SessionOptions &options) { return std::make_shared<const Trust>(options.authorities); }

/// The server's own words, or what the status says.
std::string messageOf(int status, const std::string &reply)
{
    if (auto message = jsonText(reply, "message"))
        return *message;
    return "服务器回答了 HTTP " + std::to_string(status) + "，请联系管理员。";
}

[[noreturn]] void fail(int status, const std::string &reply)
{
    const Failure failure = status == unauthorized ? Failure::Login : status == unavailable ? Failure::Unreachable : Failure::Refused;
    throw Error(failure, messageOf(status, reply));
}

} // namespace

ServerSession::ServerSession(SessionOptions options, Watch watch)
    : m_options(std::move(options))
    , m_watch(std::move(watch))
    , m_trust(trustOf(m_options))
    , m_idle(m_options.addresses.size())
{
}

ServerSession::~ServerSession() = default;

/// One server is asked twice, several are asked in a ring until the first comes again.
template <class Ask>
auto ServerSession::withServer(const Ask &ask)
{
    for (std::size_t tries = 0;; ++tries) {
        std::size_t server = 0;
        {
            const std::lock_guard lock(m_mutex);
            server = m_server;
        }
        try {
            auto result = ask(server);
            tell(m_options.addresses[server].text());
            return result;
        } catch (const Error &error) {
            if (error.failure() != Failure::Unreachable)
                throw;
            if (tries == m_options.addresses.size()) {
                tell({});
                throw;
            }
            const std::lock_guard lock(m_mutex);
            if (m_server == server)
                m_server = (server + 1) % m_options.addresses.size();
        }
    }
}

/// Sends with the token at hand; a token that has run out is renewed once.
template <class Send>
ServerSession::Answer ServerSession::authorized(std::size_t server, const std::stop_token &stop, const Send &send)
{
    for (bool renewed = false;; renewed = true) {
        const std::string used = token(server, stop);
        const Answer answer = send("Bearer " + used);
        if (answer.status == ok)
            return answer;
        if (answer.status != unauthorized || renewed)
            fail(answer.status, answer.text);
        const std::lock_guard lock(m_mutex);
        if (m_token == used)
            m_token.clear();
    }
}

void ServerSession::login(const std::string &user, const std::string &password)
{
    {
        const std::lock_guard lock(m_mutex);
        m_user = user;
        m_password = password;
        m_token.clear();
    }
    withServer([this](std::size_t server) { return token(server, {}); });
}

packet::PacketPtr ServerSession::query(
    const std::string &statement, const std::stop_token &stop, const std::function<void(std::int64_t)> &progress)
{
    return withServer([&](std::size_t server) { return queryAt(server, statement, stop, progress); });
}

std::int64_t ServerSession::serverTime()
{
    const Answer answer = withServer([this](std::size_t server) {
        return authorized(server, {}, [&](const std::string &header) {
            return call(server, { .method = "GET", .path = "/v1/time", .headers = { { "Authorization", header } } }, {}, {});
        });
    });
    const auto time = jsonText(answer.text, "time");
    const auto seconds = time ? packet::parseTimestamp(*time) : std::nullopt;
    if (!seconds)
        throw Error(Failure::Refused, "服务器没有说出它的时间，请联系管理员。");
    return *seconds;
}

ServerSession::Answer ServerSession::call(
    std::size_t server, const Request &request, const std::stop_token &stop, const ServerConnection::Receive &receiveRows)
{
    std::unique_ptr<ServerConnection> connection;
    {
        const std::lock_guard lock(m_mutex);
        if (!m_idle[server].empty()) {
            connection = std::move(m_idle[server].back());
            m_idle[server].pop_back();
        }
    }
    if (!connection)
        connection = std::make_unique<ServerConnection>(m_options.addresses[server], m_trust, m_options.timeouts);
    Answer answer;
    answer.status = connection->exchange(request, stop, [&](int status, std::span<const std::byte> bytes) {
        if (status == ok && receiveRows)
            return receiveRows(status, bytes);
        if (answer.text.size() + bytes.size() <= largestReply)
            answer.text.append(reinterpret_cast<const char *>(bytes.data()), bytes.size());
    });
    const std::lock_guard lock(m_mutex);
    m_idle[server].push_back(std::move(connection));
    return answer;
}

std::string ServerSession::token(std::size_t server, const std::stop_token &stop)
{
    std::string user;
    std::string password;
    {
        const std::lock_guard lock(m_mutex);
        if (!m_token.empty())
            return m_token;
        user = m_user;
        password = m_password;
    }
    const Request login { .method = "POST",
        .path = "/v1/login",
        .body = nlohmann::json { { "user", user }, { "password", password } }.dump(),
        .headers = { { "Content-Type", "application/json" } } };
    const Answer answer = call(server, login, stop, {});
    if (answer.status != ok)
        fail(answer.status, answer.text);
    const auto token = jsonText(answer.text, "token");
    if (!token || token->empty())
        throw Error(Failure::Login, "服务器没有给出登录凭证，请联系管理员。");
    const std::lock_guard lock(m_mutex);
    return m_token = *token;
}

packet::PacketPtr ServerSession::queryAt(
    std::size_t server, const std::string &statement, const std::stop_token &stop, const std::function<void(std::int64_t)> &progress)
try {
    std::optional<packet::StreamReader> reader;
    authorized(server, stop, [&](const std::string &header) {
        reader.emplace();
        Request request { .method = "POST",
            .path = "/v1/query",
            .body = statement,
            .headers = { { "Authorization", header }, { "Accept", "application/vnd.apache.arrow.stream" },
                { "Content-Type", "application/sql; charset=utf-8" } } };
        if (m_options.compressed)
            request.headers.emplace_back("X-Kelvara-Compression", "lz4");
        return call(server, request, stop, [&](int, std::span<const std::byte> bytes) {
            reader->feed(bytes);
            if (progress)
                progress(std::int64_t(reader->rows()));
        });
    });
    return reader->finish();
} catch (const packet::StreamError &error) {
    throw Error(Failure::Unreachable, error.what()); // like a line that breaks
}

void ServerSession::tell(const std::string &address)
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_told == address)
            return;
        m_told = address;
    }
    if (m_watch)
        m_watch(address);
}

} // namespace server_client
