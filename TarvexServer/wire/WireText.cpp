#include "WireText.h"

#include <algorithm>
#include <array>

namespace tarvex::wire {

namespace {

struct Escape
{
    char character;
    std::string_view token;
};

constexpr std::array<Escape, 19> escapes = {{
    {'?', "{_quest_}"}, {']', "{_cbc_}"},   {'[', "{_cbo_}"}, {'&', "{_amp_}"},  {':', "{_dp_}"},
    {';', "{_dc_}"},    {'.', "{_d_}"},     {',', "{_c_}"},   {'`', "{_bq1_}"},  {'>', "{_tbc_}"},
    {'<', "{_tbo_}"},   {'%', "{_prcnt_}"}, {'/', "{_slr_}"}, {'\\', "{_sll_}"}, {'^', "{_v_}"},
    {'$', "{_buks_}"},  {'@', "{_woof_}"},  {'~', "{_-_}"},   {'|', "{_l_}"},
}};

constexpr std::array<std::size_t, 256> escapedSizes = [] {
    std::array<std::size_t, 256> sizes{};
    sizes.fill(1);
    for (const Escape &escape : escapes)
        sizes[static_cast<unsigned char>(escape.character)] = escape.token.size();
    return sizes;
}();

unsigned byteAt(std::string_view text, std::size_t index)
{
    return static_cast<unsigned char>(text[index]);
}

std::size_t lengthByLeadByte(unsigned lead)
{
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead < 0xE0)
        return 2;
    if (lead >= 0xE0 && lead < 0xF0)
        return 3;
    return lead >= 0xF0 && lead < 0xF5 ? 4 : 0;
}

/// What most names are made of, and nothing is to be asked about.
bool isPlain(char character)
{
    return character >= ' ' && static_cast<unsigned char>(character) < 0x80;
}

bool isXmlCharacter(char32_t character)
{
    if (character < 0x20)
        return character == '\t' || character == '\n' || character == '\r';
    return character != 0xFFFE && character != 0xFFFF;
}

} // namespace

std::size_t utf8SequenceLength(std::string_view text)
{
    if (text.empty())
        return 0;
    const std::size_t length = lengthByLeadByte(byteAt(text, /*index=*/0));
    if (length == 0 || length > text.size())
        return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((byteAt(text, i) & 0xC0U) != 0x80U)
            return 0;
    }
    const char32_t character = codePoint(text.substr(0, length));
    const bool isOverlong = (length == 3 && character < 0x800) || (length == 4 && character < 0x10000);
    const bool isSurrogate = character >= 0xD800 && character < 0xE000;
    return isOverlong || isSurrogate || character > 0x10FFFF ? 0 : length;
}

char32_t codePoint(std::string_view sequence)
{
    if (sequence.size() == 1)
        return byteAt(sequence, /*index=*/0);
    char32_t character = byteAt(sequence, /*index=*/0) & (0x7FU >> sequence.size());
    for (std::size_t i = 1; i < sequence.size(); ++i)
        character = (character << 6U) | (byteAt(sequence, i) & 0x3FU);
    return character;
}

std::size_t escapedSize(std::string_view wireText)
{
    std::size_t size = 0;
    for (const char character : wireText)
        size += escapedSizes[static_cast<unsigned char>(character)];
    return size;
}

std::string escaped(std::string_view typedText)
{
    std::string wireText;
    wireText.reserve(escapedSize(typedText));
    for (const char character : typedText) {
        const auto *const escape = std::find_if(escapes.begin(), escapes.end(), [=](const Escape &candidate) {
            return candidate.character == character;
        });
        if (escape == escapes.end())
            wireText += character;
        else
            wireText += escape->token;
    }
    return wireText;
}

std::string unescaped(std::string_view wireText)
{
    std::string typedText;
    typedText.reserve(wireText.size());
    while (!wireText.empty()) {
        const auto *const escape =
            wireText.front() != '{'
                ? escapes.end()
                : std::find_if(escapes.begin(), escapes.end(), [=](const Escape &candidate) {
                      return wireText.starts_with(candidate.token);
                  });
        const bool isToken = escape != escapes.end();
        typedText += isToken ? escape->character : wireText.front();
        wireText.remove_prefix(isToken ? escape->token.size() : 1);
    }
    return typedText;
}

std::optional<std::string> storableName(std::string_view wireText)
{
    if (wireText.size() > maximumNameSize)
        return {};
    std::string name;
    name.reserve(wireText.size());
    while (!wireText.empty()) {
        const auto run = static_cast<std::size_t>(
            std::find_if_not(wireText.begin(), wireText.end(), isPlain) - wireText.begin());
        name += wireText.substr(0, run);
        wireText.remove_prefix(run);
        if (wireText.empty())
            break;
        const std::size_t length = utf8SequenceLength(wireText);
        if (length > 0 && isXmlCharacter(codePoint(wireText.substr(0, length))))
            name += wireText.substr(0, length);
        wireText.remove_prefix(length > 0 ? length : 1);
    }
    if (escapedSize(name) > maximumNameSize)
        return {};
    return name;
}

} // namespace tarvex::wire
