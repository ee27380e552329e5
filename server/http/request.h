#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace server {

/// The parts of an HTTP request that the server looks at.
struct Request {
    std::string method {};
    std::string path {}; ///< without the query
    std::string query {}; ///< what follows the question mark
    std::string authorization {};
    std::string accept {};
    std::string database {};
    std::string compression {};
    std::string forwardedFor {};
    std::string body {};
    bool keepAlive = false;
    bool isVersion11 = false;
    bool hasBody = false; ///< its length is stated

    /// The value of a parameter of the query, decoded; empty when there is none.
    std::string parameter(std::string_view name) const;
};

/// Reads one request from bytes as they arrive.
class RequestReader {
public:
    enum class State {
        Header,
        Body,
        Done,
        Failed,
    };

    RequestReader(std::size_t headerLimit, std::size_t bodyLimit);
    RequestReader(const RequestReader &) = delete;
    ~RequestReader();

    /// Takes bytes from the beginning of `bytes` and returns how many; the rest is to be given again with what follows it.
    std::size_t put(std::string_view bytes);
    State state() const { return m_state; }
    /// The HTTP status for what was wrong: 400, 413 or 431.
    int failure() const { return m_failure; }
    /// The header, once it is there, asks to be told that the body may come.
    bool expectsContinue() const;
    /// The request so far; complete once the state is Done.
    Request request() const;

private:
    struct Parser;
    std::unique_ptr<Parser> m_parser;
    State m_state = State::Header;
    int m_failure = 0;
};

} // namespace server
