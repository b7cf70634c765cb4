#include "PasswordHash.h"

#include <array>
#include <new>
#include <sodium.h>
#include <stdexcept>

namespace tarvex::security {

namespace {

#ifdef TARVEX_WEAK_HASHING
constexpr unsigned long long passes = crypto_pwhash_argon2id_OPSLIMIT_MIN;
constexpr std::size_t memory = crypto_pwhash_argon2id_MEMLIMIT_MIN;
#else
constexpr unsigned long long passes = 2;
constexpr std::size_t memory = 19UL * 1024 * 1024;
#endif

void startLibrary()
{
    if (sodium_init() < 0)
        throw std::runtime_error("the cryptographic library cannot start");
}

/// What an unknown login is checked against, so that it takes as long as a known one.
const std::string &nobodysHash()
{
    static const std::string hash = hashPassword("");
    return hash;
}

} // namespace

std::string hashPassword(std::string_view digest)
{
    startLibrary();
    std::array<char, crypto_pwhash_STRBYTES> hash{};
    if (crypto_pwhash_str_alg(hash.data(), digest.data(), digest.size(), passes, memory,
                              crypto_pwhash_ALG_ARGON2ID13) != 0)
        throw std::bad_alloc();
    return hash.data();
}

bool matchesPassword(const std::string &hash, std::string_view digest)
{
    startLibrary();
    const std::string &checked = hash.empty() ? nobodysHash() : hash;
    const bool matches = crypto_pwhash_str_verify(checked.c_str(), digest.data(), digest.size()) == 0;
    return matches && !hash.empty();
}

} // namespace tarvex::security
