#pragma once

#include <libpq-fe.h>

#include <string>

namespace engine {

/// Starts a session with the parameters of a URL and those that we always want: UTF-8, read-only, plain quotes, ISO dates; and,
/// unless the URL says otherwise, limits by which a server that is gone is noticed. Whether it succeeded, PQstatus() tells.
/// Throws Error(Unavailable) when the URL cannot be read.
PGconn *openSession(const std::string &url);

/// A message of libpq's without the line break at its end.
std::string trimmedMessage(const char *message);

} // namespace engine
