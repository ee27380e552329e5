#pragma once

#include <stdexcept>
#include <string>

namespace engine {

enum class Failure {
    Refused, ///< the gate did not let the statement through
    Database, ///< the database refused or broke it off
    Cancelled,
    TimeLimit,
    Unavailable, ///< the database cannot be opened or is gone
};

/// what() is Chinese and carries the database's own words.
class Error : public std::runtime_error {
public:
    Error(Failure failure, const std::string &message)
        : std::runtime_error(message)
        , m_failure(failure)
    {
    }
    Failure failure() const { return m_failure; }

private:
    Failure m_failure;
};

} // namespace engine
