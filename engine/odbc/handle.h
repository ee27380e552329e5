#pragma once

#include "engine/odbc/odbc.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace engine::odbc {

/// What answers behind the driver, by the name it gives itself; every other system is taken for one of Oracle's class.
enum class System : std::uint8_t { Oracle, Sqlite, Postgresql };

/// How texts pass between us and a driver: wide characters, or UTF-8 where the driver knows bytes alone.
enum class Encoding : std::uint8_t { Wide, Utf8 };

/// An environment, a connection or a statement.
class Handle {
public:
    Handle() = default;
    /// Throws Error(Unavailable) when the driver manager gives none.
    Handle(SQLSMALLINT type, SQLHANDLE parent, Encoding encoding = Encoding::Wide);
    Handle(Handle &&other) noexcept
        : m_type(other.m_type)
        , m_encoding(other.m_encoding)
        , m_handle(std::exchange(other.m_handle, nullptr))
    {
    }
    Handle &operator=(Handle &&other) noexcept
    {
        std::swap(m_type, other.m_type);
        std::swap(m_encoding, other.m_encoding);
        std::swap(m_handle, other.m_handle);
        return *this;
    }
    ~Handle();

    operator SQLHANDLE() const { return m_handle; }
    SQLSMALLINT type() const { return m_type; }
    Encoding encoding() const { return m_encoding; }
    SQLSMALLINT textType() const { return m_encoding == Encoding::Wide ? SQL_C_WCHAR : SQL_C_CHAR; }

private:
    SQLSMALLINT m_type = 0;
    Encoding m_encoding = Encoding::Wide;
    SQLHANDLE m_handle = nullptr;
};

/// What the driver says about the last call.
struct Diagnosis {
    std::string state; ///< five characters, as SQLSTATE
    std::string message; ///< without the names of manager and driver
};
Diagnosis diagnosisOf(const Handle &handle);

/// Throws why the last call failed, as Error.
[[noreturn]] void fail(const Handle &handle);

/// Runs a statement. False: see diagnosisOf().
bool execute(const Handle &statement, std::string_view sql);

/// What the driver says about a column of the result.
struct Description {
    std::string name; ///< as the database writes it
    std::string typeName; ///< in capitals
    SQLSMALLINT type = 0;
    SQLULEN size = 0; ///< characters or digits; 0: not known
    SQLSMALLINT digits = 0; ///< after the point
};
Description describe(const Handle &statement, SQLUSMALLINT column);

/// A text of `size` bytes that the driver has given, as UTF-8; `buffer` may be needed to hold it.
std::string_view textOf(Encoding encoding, const char *bytes, std::size_t size, std::string &buffer);

} // namespace engine::odbc
