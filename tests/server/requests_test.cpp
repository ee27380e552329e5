// Sends what tests/server/requests.txt lists.

#include "server/http/request_reader.h"
#include "tests/server/test_server.h"

#include <gmock/gmock.h>

#include <fstream>
#include <sstream>

namespace server::test {

namespace {

struct Listed {
    std::vector<int> statuses {};
    bool staysOpen = false;
    std::string bytes {};
    std::string line {};
};

std::string escaped(std::string_view &rest)
{
    const char kind = rest[1];
    const std::size_t size = kind == 'x' ? 4 : 2;
    const std::string digits(rest.substr(2, size - 2));
    rest.remove_prefix(size);
    return std::string(1,
        kind == 'x'       ? char(std::stoi(digits, nullptr, 16))
            : kind == '0' ? '\0'
            : kind == 'r' ? '\r'
            : kind == 'n' ? '\n'
                          : '\t');
}

/// Only {number*text} is a repetition; other braces are themselves.
std::size_t repetitionSize(std::string_view text)
{
    const std::size_t star = text.find('*');
    const bool hasNumber = star != text.npos && star > 1 && text.substr(1, star - 1).find_first_not_of("0123456789") == text.npos;
    return hasNumber ? text.find('}') : 0;
}

std::string bytesOf(std::string_view text)
{
    constexpr std::string_view lineEnd = "⏎";
    std::string bytes;
    while (!text.empty()) {
        if (const std::size_t size = text.front() == '{' ? repetitionSize(text) : 0) {
            const std::size_t star = text.find('*');
            const std::string part = bytesOf(text.substr(star + 1, size - star - 1));
            for (int count = std::stoi(std::string(text.substr(1))); count > 0; --count)
                bytes += part;
            text.remove_prefix(size + 1);
        } else if (text.starts_with(lineEnd)) {
            bytes += "\r\n";
            text.remove_prefix(lineEnd.size());
        } else if (text.front() == '\\') {
            bytes += escaped(text);
        } else {
            bytes += text.front();
            text.remove_prefix(1);
        }
    }
    return bytes;
}

std::vector<Listed> listedRequests()
{
    std::vector<Listed> requests;
    std::istringstream lines(engine::test::fileText("tests/server/requests.txt"));
    for (std::string line; std::getline(lines, line);) {
        const std::size_t bar = line.find("| ");
        if (line.starts_with('#') || bar == line.npos)
            continue;
        Listed request { .bytes = bytesOf(std::string_view(line).substr(bar + 2)), .line = line };
        std::istringstream wanted(line.substr(0, bar));
        for (std::string word; wanted >> word;) {
            if (word == "open" || word == "close")
                request.staysOpen = word == "open";
            else
                request.statuses.push_back(std::stoi(word));
        }
        requests.push_back(request);
    }
    return requests;
}

} // namespace

TEST(Requests, AllGetWhatTheListSays)
{
    const TestServer server;
    const auto requests = listedRequests();
    EXPECT_GE(requests.size(), 100u);
    for (const Listed &request : requests) {
        HttpsClient client(server.port());
        client.send(request.bytes);
        const bool isHead = request.bytes.starts_with("HEAD");
        for (const int status : request.statuses) {
            if (isHead)
                EXPECT_THAT(client.receiveSome(), testing::StartsWith("HTTP/1.1 " + std::to_string(status))) << request.line;
            else
                EXPECT_EQ(client.receive().status, status) << request.line;
        }
        if (request.staysOpen)
            EXPECT_EQ(client.get("/healthz").status, 200) << request.line;
        else
            EXPECT_EQ(client.receiveSome(), "") << request.line;
    }
}

/// However the bytes arrive, the same requests are read.
TEST(Requests, AreTheSameInPiecesOfAnySize)
{
    using State = RequestReader::State;
    for (const Listed &request : listedRequests()) {
        std::vector<std::string> results;
        for (const std::size_t size : { std::size_t(1), std::size_t(2), std::size_t(7), request.bytes.size() }) {
            RequestReader reader(8 * 1024, 64 * 1024);
            std::string input;
            for (std::size_t at = 0; at < request.bytes.size() && reader.state() != State::Done && reader.state() != State::Failed;
                 at += size) {
                input += request.bytes.substr(at, size);
                input.erase(0, reader.put(input));
            }
            const bool isDone = reader.state() == State::Done;
            results.push_back(isDone ? reader.request().path + " " + reader.request().body : std::to_string(reader.failure()));
        }
        EXPECT_THAT(results, testing::Each(results.front())) << request.line;
    }
}

} // namespace server::test
