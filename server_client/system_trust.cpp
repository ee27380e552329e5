#include "server_client/system_trust.h"

#include <openssl/err.h>
#include <openssl/x509.h>

#ifdef _WIN32
// After those, whose names it takes for its own.
#include <windows.h>

#include <wincrypt.h>
#endif

namespace server_client {

#ifdef _WIN32

void trustSystem(X509_STORE *store)
{
    const HCERTSTORE system = CertOpenSystemStoreW(0, L"ROOT");
    if (!system)
        return;
    PCCERT_CONTEXT found = nullptr;
    while ((found = CertEnumCertificatesInStore(system, found))) {
        const unsigned char *bytes = found->pbCertEncoded;
        X509 *const authority = d2i_X509(nullptr, &bytes, long(found->cbCertEncoded));
        if (authority)
            X509_STORE_add_cert(store, authority);
        X509_free(authority);
    }
    CertCloseStore(system, 0);
    ERR_clear_error();
}

#else

void trustSystem(X509_STORE *store)
{
    X509_STORE_set_default_paths(store);
    ERR_clear_error();
}

#endif

} // namespace server_client
