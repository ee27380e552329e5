#pragma once

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
    std::string forwardedFor {}; ///< the last line of X-Forwarded-For
    std::string body {};
    bool keepAlive = false; ///< the client goes on with the connection, and it is certain where this request ends
    bool isVersion11 = false;
    bool hasBody = false; ///< its length is stated

    /// The value of a parameter of the query, decoded; empty when there is none.
    [[nodiscard]] std::string parameter(std::string_view name) const;
};

} // namespace server
