#include "server_client/server_session.h"

#include "packet/stream_reader.h"
#include "packet/text.h"

#include <nlohmann/json.hpp>

#include <random>
#include <thread>

namespace server_client {

namespace {

enum Status { ok = 200, unauthorized = 401, tooMany = 429, unavailable = 503 };

constexpr int mostWaits = 30; ///< seconds, about
constexpr auto pause = std::chrono::milliseconds(200); ///< between two rounds of asking servers that cannot be reached
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

/// `unauthorizedIs`: what it means that the server does not know who asks.
[[noreturn]] void fail(int status, const std::string &reply, Failure unauthorizedIs = Failure::SessionEnded)
{
    const Failure failure = status == unauthorized ? unauthorizedIs : status == unavailable ? Failure::Unreachable : Failure::Refused;
    throw Error(failure, messageOf(status, reply));
}

/// Too many log in at this moment, which is nobody's fault and soon over.
bool isBusy(int status, const std::string &reply) { return status == tooMany && jsonText(reply, "code") == "busy"; }

/// About a second, not the same for all who wait.
void waitForTurn()
{
    std::random_device random;
    std::this_thread::sleep_for(std::chrono::milliseconds(700 + random() % 600));
}

/// A request whose body is an object of secrets; it is wiped with the request.
struct SecretRequest : Request {
    SecretRequest(const std::string &wantedPath, std::initializer_list<std::pair<std::string_view, const std::string &>> texts)
        : Request { .method = "POST", .path = wantedPath, .headers = { { "Content-Type", "application/json" } } }
    {
        for (const auto &[name, text] : texts) {
            body += body.empty() ? "{" : ",";
            packet::appendJsonText(name, body);
            body += ':';
            packet::appendJsonText(text, body);
        }
        body += '}';
    }
    SecretRequest(const SecretRequest &) = delete;
    ~SecretRequest() { wipe(body); }
};

[[noreturn]] void failTooLarge(const std::string &what)
{
    throw Error(Failure::Result, "查询结果的" + what + "超过了客户端的上限，没有取完，也没有显示；请缩小查询范围");
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
auto ServerSession::withServer(Delivery &delivery, const Ask &ask, std::chrono::milliseconds patience)
{
    const auto end = std::chrono::steady_clock::now() + patience;
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
            if (tries >= m_options.addresses.size()) {
                if (!delivery.mayRepeat() || std::chrono::steady_clock::now() >= end) {
                    tell({});
                    throw;
                }
                std::this_thread::sleep_for(pause);
            }
            {
                const std::lock_guard lock(m_mutex);
                if (m_server == server)
                    m_server = (server + 1) % m_options.addresses.size();
            }
            if (!delivery.mayRepeat())
                throw Error(Failure::Unreachable,
                    std::string(error.what()) + "查询已经送达，没有自动再发一次；请重新查询，仍然如此时请缩小范围或联系管理员。");
        }
    }
}

/// Sends with the token at hand. One that is refused is forgotten, as nobody here can renew it.
template <class Send>
ServerSession::Answer ServerSession::authorized(Delivery &delivery, const Send &send)
{
    const std::string used = token();
    const Answer answer = send("Bearer " + used);
    if (answer.status == ok)
        return answer;
    --delivery.sends; // a refusal is an answer; what was lost before stays lost
    if (answer.status == unauthorized) {
        const std::lock_guard lock(m_mutex);
        if (m_token == used)
            m_token.clear();
    }
    fail(answer.status, answer.text);
}

Account ServerSession::login(const std::string &user, const std::string &password)
{
    {
        const std::lock_guard lock(m_mutex);
        m_token.clear();
    }
    const SecretRequest request("/v1/login", { { "user", user }, { "password", password } });
    Delivery delivery;
    return withServer(delivery, [&](std::size_t server) {
        delivery = {}; // may be asked as often as one likes
        const Answer answer = callPatiently(server, request, delivery);
        if (answer.status != ok)
            fail(answer.status, answer.text, Failure::Login);
        return takeToken(answer);
    });
}

Account ServerSession::changePassword(const std::string &before, const std::string &after)
{
    SecretRequest request("/v1/password", { { "old_password", before }, { "password", after } });
    Delivery delivery;
    return withServer(delivery, [&](std::size_t server) {
        return takeToken(authorized(delivery, [&](const std::string &header) {
            request.headers.back() = { "Authorization", header };
            return callPatiently(server, request, delivery);
        }));
    });
}

void ServerSession::logout(const std::stop_token &stop)
try {
    const Request request { .method = "POST", .path = "/v1/logout", .headers = { { "Authorization", "Bearer " + token() } } };
    std::size_t server = 0;
    {
        const std::lock_guard lock(m_mutex);
        m_token.clear();
        server = m_server;
    }
    Delivery delivery;
    call(server, request, delivery, stop, {});
} catch (const std::exception &) {
    // The token ends by itself.
}

void ServerSession::reportRefusedScreen(const std::string &screen)
try {
    Delivery delivery;
    std::string body = R"({"event":"refused_screen","screen":)";
    packet::appendJsonText(screen, body);
    const Request request {
        .method = "POST", .path = "/v1/audit", .body = body + "}", .headers = { { "Authorization", "Bearer " + token() } }
    };
    withServer(delivery, [&](std::size_t server) { return call(server, request, delivery, {}, {}); });
} catch (const std::exception &) {
    // The user has been refused all the same.
}

packet::PacketPtr ServerSession::query(
    const std::string &statement, const std::stop_token &stop, const std::function<void(std::int64_t)> &progress)
{
    Delivery delivery;
    return withServer(
        delivery, [&](std::size_t server) { return queryAt(server, statement, delivery, stop, progress); }, m_options.patience);
}

std::int64_t ServerSession::serverTime()
{
    Delivery delivery;
    const Answer answer = withServer(delivery, [&](std::size_t server) {
        delivery = {}; // may be asked as often as one likes
        return authorized(delivery, [&](const std::string &header) {
            return call(server, { .method = "GET", .path = "/v1/time", .headers = { { "Authorization", header } } }, delivery, {}, {});
        });
    });
    const auto time = jsonText(answer.text, "time");
    const auto seconds = time ? packet::parseTimestamp(*time) : std::nullopt;
    if (!seconds)
        throw Error(Failure::Refused, "服务器没有说出它的时间，请联系管理员。");
    return *seconds;
}

ServerSession::Answer ServerSession::call(std::size_t server, const Request &request, Delivery &delivery, const std::stop_token &stop,
    const ServerConnection::Receive &receiveRows)
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
    answer.status = connection->exchange(request, delivery, stop, [&](int status, std::span<const std::byte> bytes) {
        if (status == ok && receiveRows)
            return receiveRows(status, bytes);
        if (answer.text.size() + bytes.size() <= largestReply)
            answer.text.append(reinterpret_cast<const char *>(bytes.data()), bytes.size());
    });
    const std::lock_guard lock(m_mutex);
    m_idle[server].push_back(std::move(connection));
    return answer;
}

std::string ServerSession::token()
{
    const std::lock_guard lock(m_mutex);
    if (m_token.empty())
        throw Error(Failure::SessionEnded, "没有登录，请先登录");
    return m_token;
}

ServerSession::Answer ServerSession::callPatiently(std::size_t server, const Request &request, Delivery &delivery)
{
    Answer answer = call(server, request, delivery, {}, {});
    for (int waits = 0; waits < mostWaits && isBusy(answer.status, answer.text); ++waits) {
        waitForTurn();
        --delivery.sends;
        answer = call(server, request, delivery, {}, {});
    }
    return answer;
}

Account ServerSession::takeToken(const Answer &answer)
{
    const auto given = jsonText(answer.text, "token");
    auto account = Account::parse(answer.text);
    if (!given || given->empty() || !account)
        throw Error(Failure::Login, "服务器没有给出登录凭证，请联系管理员。");
    const std::lock_guard lock(m_mutex);
    m_token = *given;
    return *std::move(account);
}

packet::PacketPtr ServerSession::queryAt(std::size_t server, const std::string &statement, Delivery &delivery, const std::stop_token &stop,
    const std::function<void(std::int64_t)> &progress)
try {
    std::optional<packet::StreamReader> reader;
    std::uint64_t received = 0;
    authorized(delivery, [&](const std::string &header) {
        reader.emplace(packet::StreamLimits { .totalBytes = m_options.mostBytes });
        Request request { .method = "POST",
            .path = "/v1/query",
            .body = statement,
            .headers = { { "Authorization", header }, { "Accept", "application/vnd.apache.arrow.stream" },
                { "Content-Type", "application/sql; charset=utf-8" } } };
        if (m_isCompressed)
            request.headers.emplace_back("X-Kelvara-Compression", "lz4");
        return call(server, request, delivery, stop, [&](int, std::span<const std::byte> bytes) {
            if ((received += bytes.size()) > m_options.mostBytes)
                failTooLarge("大小");
            reader->feed(bytes);
            if (reader->rows() > m_options.mostRows)
                failTooLarge("行数");
            if (progress)
                progress(std::int64_t(reader->rows()));
        });
    });
    return reader->finish();
} catch (const packet::StreamError &error) {
    throw Error(Failure::Result, error.what());
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
