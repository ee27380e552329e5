#include "server/users/password.h"

#include <argon2.h>
#include <openssl/rand.h>

#include <array>
#include <stdexcept>

namespace server {

namespace {

constexpr std::uint32_t passes = 2;
constexpr std::uint32_t memoryKib = 19 * 1024;
constexpr std::uint32_t lanes = 1;
constexpr std::size_t hashSize = 32;

} // namespace

std::string hashPassword(std::string_view password)
{
    std::array<unsigned char, 16> salt;
    std::array<char, 160> encoded;
    if (RAND_bytes(salt.data(), int(salt.size())) != 1)
        throw std::runtime_error("系统没有给出随机数，请检查系统的随机数来源");
    const int result = argon2id_hash_encoded(
        passes, memoryKib, lanes, password.data(), password.size(), salt.data(), salt.size(), hashSize, encoded.data(), encoded.size());
    if (result != ARGON2_OK)
        throw std::runtime_error(std::string("无法处理密码：") + argon2_error_message(result));
    return encoded.data();
}

bool passwordMatches(const std::string &hash, std::string_view password)
{
    return argon2id_verify(hash.c_str(), password.data(), password.size()) == ARGON2_OK;
}

} // namespace server
