#include "server/tls/certificate.h"

#include "server/base/files.h"

#include <openssl/bio.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace server {

namespace {

constexpr long lifetime = 825 * 24 * 3600; ///< seconds; the longest that all clients accept
constexpr long thirdVersion = 2;

template <auto release>
struct Release {
    template <class T>
    void operator()(T *object) const
    {
        release(object);
    }
};
using Key = std::unique_ptr<EVP_PKEY, Release<EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Release<X509_free>>;
using File = std::unique_ptr<BIO, Release<BIO_free_all>>;

void require(bool success)
{
    if (!success)
        throw std::runtime_error("无法制作自签名证书，请检查 OpenSSL 和磁盘空间");
}

void addExtension(X509 *certificate, int kind, const char *value)
{
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, certificate, certificate, nullptr, nullptr, 0);
    const std::unique_ptr<X509_EXTENSION, Release<X509_EXTENSION_free>> extension(X509V3_EXT_conf_nid(nullptr, &context, kind, value));
    require(extension && X509_add_ext(certificate, extension.get(), -1) == 1);
}

void setSerialNumber(X509 *certificate)
{
    const std::unique_ptr<BIGNUM, Release<BN_free>> number(BN_new());
    require(number && BN_rand(number.get(), 120, BN_RAND_TOP_ONE, BN_RAND_BOTTOM_ANY) == 1);
    require(BN_to_ASN1_INTEGER(number.get(), X509_get_serialNumber(certificate)) != nullptr);
}

Certificate certify(EVP_PKEY *key)
{
    Certificate certificate(X509_new());
    require(certificate && X509_set_version(certificate.get(), thirdVersion) == 1);
    setSerialNumber(certificate.get());
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -3600);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), lifetime);
    X509_NAME *const name = X509_get_subject_name(certificate.get());
    const auto *host = reinterpret_cast<const unsigned char *>("localhost");
    require(X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, host, -1, -1, 0) == 1);
    require(X509_set_issuer_name(certificate.get(), name) == 1 && X509_set_pubkey(certificate.get(), key) == 1);
    addExtension(certificate.get(), NID_subject_alt_name, "DNS:localhost,IP:127.0.0.1,IP:::1");
    addExtension(certificate.get(), NID_basic_constraints, "critical,CA:TRUE,pathlen:0");
    addExtension(certificate.get(), NID_key_usage, "critical,digitalSignature,keyCertSign");
    addExtension(certificate.get(), NID_ext_key_usage, "serverAuth");
    require(X509_sign(certificate.get(), key, EVP_sha256()) > 0);
    return certificate;
}

} // namespace

void makeLocalCertificate(const std::filesystem::path &certificateFile, const std::filesystem::path &keyFile)
{
    const Key key(EVP_EC_gen("P-256"));
    require(key != nullptr);
    const Certificate certificate = certify(key.get());
    createPrivateFile(keyFile);
    const File ofKey(BIO_new_file(keyFile.string().c_str(), "w"));
    require(ofKey && PEM_write_bio_PrivateKey(ofKey.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr) == 1);
    const File ofCertificate(BIO_new_file(certificateFile.string().c_str(), "w"));
    require(ofCertificate && PEM_write_bio_X509(ofCertificate.get(), certificate.get()) == 1);
}

} // namespace server
