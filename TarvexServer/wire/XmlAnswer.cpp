#include "XmlAnswer.h"

#include "WireText.h"

#include <algorithm>

namespace tarvex::wire {

void XmlAnswer::element(std::string_view name, std::string_view text)
{
    m_document.append("<").append(name).append(">");
    appendText(text);
    m_document.append("</").append(name).append(">");
}

std::string XmlAnswer::finish()
{
    m_document += "</answer>";
    return std::move(m_document);
}

void XmlAnswer::appendText(std::string_view text)
{
    const auto isSpecial = [this](char character) {
        return character == '&' || character == '<' || character == '>' || character == '\r' ||
               (m_encoding == Encoding::Ascii && static_cast<unsigned char>(character) > 0x7F);
    };
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
