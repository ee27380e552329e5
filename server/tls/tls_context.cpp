#include "server/tls/tls_context.h"

#include <openssl/err.h>

#include <stdexcept>

namespace server {

namespace {

std::string opensslWords()
{
    char words[256] = "";
    ERR_error_string_n(ERR_get_error(), words, sizeof words);
    ERR_clear_error();
    return words;
}

} // namespace

TlsContext makeTlsContext(const std::string &certificateFile, const std::string &keyFile)
{
    TlsContext context(SSL_CTX_new(TLS_server_method()));
    if (!context)
        throw std::runtime_error("无法准备 TLS：" + opensslWords());
    SSL_CTX_set_min_proto_version(context.get(), TLS1_2_VERSION);
    // Of TLS 1.2 only what encrypts and authenticates in one step; TLS 1.3 has nothing else.
    SSL_CTX_set_cipher_list(context.get(), "ECDHE+AESGCM:ECDHE+CHACHA20");
    SSL_CTX_set_options(context.get(), SSL_OP_NO_COMPRESSION | SSL_OP_NO_RENEGOTIATION | SSL_OP_CIPHER_SERVER_PREFERENCE);
    SSL_CTX_set_mode(context.get(), SSL_MODE_RELEASE_BUFFERS);
    // Sessions are resumed by tickets, which the clients keep.
    SSL_CTX_set_session_cache_mode(context.get(), SSL_SESS_CACHE_OFF);
    SSL_CTX_set_num_tickets(context.get(), 1);
    if (SSL_CTX_use_certificate_chain_file(context.get(), certificateFile.c_str()) != 1)
        throw std::runtime_error("无法读取证书文件 " + certificateFile + "：" + opensslWords() + "；请检查路径和 PEM 格式");
    if (SSL_CTX_use_PrivateKey_file(context.get(), keyFile.c_str(), SSL_FILETYPE_PEM) != 1)
        throw std::runtime_error("无法读取私钥文件 " + keyFile + "：" + opensslWords() + "；请检查路径、权限，以及它是否属于该证书");
    return context;
}

} // namespace server
