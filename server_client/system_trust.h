#pragma once

#include <openssl/ossl_typ.h>

namespace server_client {

/// Adds the authorities that this system trusts to those of a store. One that cannot be read is left out.
void trustSystem(X509_STORE *store);

} // namespace server_client
