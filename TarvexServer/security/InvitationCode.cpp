#include "InvitationCode.h"

#include "Sodium.h"

#include <cstdint>

namespace tarvex::security {

namespace {

constexpr std::string_view alphabet = "34679ACDEFGHJKMNPQRTVWXY";
constexpr std::size_t codeSize = 20; // 91 bits
constexpr std::size_t groupSize = 4;

bool isGap(char character)
{
    return character == ' ' || character == '-';
}

char upperCase(char character)
{
    return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
}

} // namespace

std::string newInvitationCode()
{
    startLibrary();
    std::string code;
    for (std::size_t i = 0; i < codeSize; ++i) {
        if (i > 0 && i % groupSize == 0)
            code += '-';
        code += alphabet[randombytes_uniform(static_cast<std::uint32_t>(alphabet.size()))];
    }
    return code;
}

std::string_view trailingInvitationCode(std::string_view text)
{
    std::size_t start = text.size();
    for (std::size_t found = 0; found < codeSize;) {
        if (start == 0)
            return {};
        const char character = text[--start];
        if (isGap(character))
            continue;
        if (alphabet.find(upperCase(character)) == std::string_view::npos)
            return {};
        ++found;
    }
    return start == 0 || isGap(text[start - 1]) ? text.substr(start) : std::string_view();
}

std::string invitationHash(std::string_view code)
{
    std::basic_string<unsigned char> symbols;
    for (const char character : code) {
        if (!isGap(character))
            symbols += static_cast<unsigned char>(upperCase(character));
    }
    std::array<unsigned char, crypto_generichash_BYTES> hash{};
    crypto_generichash(hash.data(), hash.size(), symbols.data(), symbols.size(), nullptr, /*keylen=*/0);
    return hexadecimal(hash);
}

} // namespace tarvex::security
