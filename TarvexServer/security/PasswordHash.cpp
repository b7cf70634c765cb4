#include "PasswordHash.h"

#include "Sodium.h"

#include <array>
#include <boost/regex.hpp>
#include <new>
#include <stdexcept>

namespace tarvex::security {

namespace {

constexpr unsigned long long passes = 2;
constexpr std::size_t memory = 19UL * 1024 * 1024;

/// What the text of a hash holds.
struct Stored
{
    using Hash = std::array<unsigned char, 32>;

    unsigned long long passes = 0;
    std::size_t memory = 0; ///< in bytes
    std::array<unsigned char, crypto_pwhash_argon2id_SALTBYTES> salt{};
    Hash hash{};
};

template<std::size_t size>
void decode(const std::string &text, std::array<unsigned char, size> &bytes)
{
    std::size_t read = 0;
    if (sodium_base642bin(bytes.data(), size, text.data(), text.size(), nullptr, &read, nullptr,
                          sodium_base64_VARIANT_ORIGINAL_NO_PADDING) != 0 ||
        read != size)
        throw std::runtime_error("a password hash is damaged");
}

Stored readHash(const std::string &text)
{
    static const boost::regex form(R"(\$argon2id\$v=19\$m=(\d{1,10}),t=(\d{1,3}),p=1\$([^$]+)\$([^$]+))");
    boost::smatch found;
    if (!boost::regex_match(text, found, form))
        throw std::runtime_error("a password hash is damaged");
    Stored stored{
        .passes = std::stoull(found[2]), .memory = std::stoul(found[1]) * 1024, .salt = {}, .hash = {}};
    decode(found[3], stored.salt);
    decode(found[4], stored.hash);
    return stored;
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
    const Stored stored = readHash(hash.empty() ? nobodysHash() : hash);
    Stored::Hash made;
    // Not the library's own comparison: to that, missing memory and another password are the same.
    if (crypto_pwhash(made.data(), made.size(), digest.data(), digest.size(), stored.salt.data(),
                      stored.passes, stored.memory, crypto_pwhash_ALG_ARGON2ID13) != 0)
        throw std::bad_alloc();
    return sodium_memcmp(made.data(), stored.hash.data(), made.size()) == 0 && !hash.empty();
}

} // namespace tarvex::security
