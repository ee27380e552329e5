#include "server/users/token.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/rand.h>

#include <stdexcept>

namespace server {

namespace {

constexpr char version = 2;
constexpr std::size_t numberSize = 8;
constexpr std::size_t headSize = 1 + 3 * numberSize;
constexpr std::size_t signatureSize = 32;
constexpr std::size_t longestToken = 1024;
constexpr std::string_view digits = "0123456789abcdef";

std::string toHex(std::string_view bytes)
{
    std::string text;
    text.reserve(2 * bytes.size());
    for (const char byte : bytes) {
        text += digits[std::uint8_t(byte) >> 4];
        text += digits[std::uint8_t(byte) & 15];
    }
    return text;
}

/// Small letters only, so that one token has one form.
std::optional<std::string> fromHex(std::string_view text)
{
    std::string bytes;
    for (std::size_t at = 0; at + 1 < text.size(); at += 2) {
        const std::size_t high = digits.find(text[at]);
        const std::size_t low = digits.find(text[at + 1]);
        if (high == std::string_view::npos || low == std::string_view::npos)
            return std::nullopt;
        bytes += char(high << 4 | low);
    }
    return text.size() % 2 == 0 ? std::optional(bytes) : std::nullopt;
}

std::string randomBytes(std::size_t count)
{
    std::string bytes(count, '\0');
    if (RAND_bytes(reinterpret_cast<unsigned char *>(bytes.data()), int(count)) != 1)
        throw std::runtime_error("系统没有给出随机数，请检查系统的随机数来源");
    return bytes;
}

std::string bigEndian(std::int64_t number)
{
    std::string bytes(numberSize, '\0');
    for (std::size_t at = numberSize; at-- > 0; number >>= 8)
        bytes[at] = char(number & 0xFF);
    return bytes;
}

std::int64_t numberOf(std::string_view bytes)
{
    std::uint64_t number = 0;
    for (const char byte : bytes)
        number = number << 8 | std::uint8_t(byte);
    return std::int64_t(number);
}

} // namespace

std::string TokenKey::sign(const Token &token) const
{
    if (token.generation.size() != numberSize)
        throw std::invalid_argument("a token needs the generation of its account");
    const std::string payload = version + bigEndian(token.expires) + randomBytes(numberSize) + token.generation + token.user;
    return toHex(payload + signatureOf(payload));
}

std::optional<Token> TokenKey::verify(std::string_view text) const
{
    const auto bytes = text.size() <= longestToken ? fromHex(text) : std::nullopt;
    if (!bytes || bytes->size() <= headSize + signatureSize || bytes->front() != version)
        return std::nullopt;
    const auto payload = std::string_view(*bytes).substr(0, bytes->size() - signatureSize);
    const std::string expected = signatureOf(payload);
    if (CRYPTO_memcmp(expected.data(), bytes->data() + payload.size(), signatureSize) != 0)
        return std::nullopt;
    return Token { std::string(payload.substr(headSize)), numberOf(payload.substr(1, numberSize)),
        std::string(payload.substr(1 + 2 * numberSize, numberSize)) };
}

std::string TokenKey::signatureOf(std::string_view payload) const
{
    std::string signature(signatureSize, '\0');
    if (!HMAC(EVP_sha256(), m_secret.data(), int(m_secret.size()), reinterpret_cast<const unsigned char *>(payload.data()), payload.size(),
            reinterpret_cast<unsigned char *>(signature.data()), nullptr))
        throw std::runtime_error("无法计算令牌的签名");
    return signature;
}

std::string generationOf(std::string_view passwordHash)
{
    std::string digest(signatureSize, '\0');
    if (EVP_Digest(
            passwordHash.data(), passwordHash.size(), reinterpret_cast<unsigned char *>(digest.data()), nullptr, EVP_sha256(), nullptr)
        != 1)
        throw std::runtime_error("无法计算帐户的标记");
    digest.resize(numberSize);
    return digest;
}

std::string randomHex(std::size_t count) { return toHex(randomBytes(count)); }

} // namespace server
