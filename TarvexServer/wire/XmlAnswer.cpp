#include "XmlAnswer.h"

#include "WireText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

namespace tarvex::wire {

namespace {

/// Which bytes do not stand for themselves.
constexpr std::array<bool, 256> specialBytes(XmlAnswer::Encoding encoding)
{
    std::array<bool, 256> isSpecial{};
    for (const unsigned char byte : std::to_array<unsigned char>({'&', '<', '>', '\r'}))
        isSpecial[byte] = true;
    for (std::size_t byte = 0x80; encoding == XmlAnswer::Encoding::Ascii && byte < isSpecial.size(); ++byte)
        isSpecial[byte] = true;
    return isSpecial;
}

constexpr auto specialInUtf8 = specialBytes(XmlAnswer::Encoding::Utf8);
constexpr auto specialInAscii = specialBytes(XmlAnswer::Encoding::Ascii);

} // namespace

void XmlAnswer::element(std::string_view name, std::string_view text)
{
    appendTag("<", name);
    appendText(text);
    appendTag("</", name);
}

void XmlAnswer::element(std::string_view name, std::int64_t number)
{
    std::array<char, std::numeric_limits<std::int64_t>::digits10 + 2> digits{};
    const char *const end = std::to_chars(digits.begin(), digits.end(), number).ptr;
    appendTag("<", name);
    m_document.append(digits.data(), static_cast<std::size_t>(end - digits.data()));
    appendTag("</", name);
}

void XmlAnswer::appendTag(std::string_view opening, std::string_view name)
{
    m_document.append(opening).append(name) += '>';
}

std::string XmlAnswer::finish()
{
    m_document += "</answer>";
    return std::move(m_document);
}

void XmlAnswer::appendText(std::string_view text)
{
    const auto &specials = m_encoding == Encoding::Ascii ? specialInAscii : specialInUtf8;
    const auto isSpecial = [&](char character) { return specials[static_cast<unsigned char>(character)]; };
    for (;;) {
        const auto special = std::find_if(text.begin(), text.end(), isSpecial);
        m_document.append(text.begin(), special);
        text.remove_prefix(static_cast<std::size_t>(special - text.begin()));
        if (text.empty())
            return;
        const std::size_t length = std::max<std::size_t>(utf8SequenceLength(text), 1);
        appendSpecial(text.substr(0, length));
        text.remove_prefix(length);
    }
}

void XmlAnswer::appendSpecial(std::string_view character)
{
    if (character == "&")
        m_document += "&amp;";
    else if (character == "<")
        m_document += "&lt;";
    else if (character == ">")
        m_document += "&gt;";
    else if (character == "\r") // a bare one would be read back as a line feed
        m_document += "&#13;";
    else
        m_document += "&#" + std::to_string(static_cast<std::uint32_t>(codePoint(character))) + ";";
}

} // namespace tarvex::wire
