#pragma once

#include <openssl/ssl.h>

#include <memory>
#include <string>

namespace server {

struct FreeContext {
    void operator()(SSL_CTX *context) const { SSL_CTX_free(context); }
};
/// Certificate, key and rules of all connections; connections keep the context under which they began.
using TlsContext = std::unique_ptr<SSL_CTX, FreeContext>;

/// TLS 1.2 and later for a server with this certificate chain and key, both PEM files. Throws std::runtime_error for the operator.
TlsContext makeTlsContext(const std::string &certificateFile, const std::string &keyFile);

} // namespace server
