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
    while (!text.empty()) {
        const std::size_t length = std::max<std::size_t>(utf8SequenceLength(text), 1);
        appendCharacter(text.substr(0, length));
        text.remove_prefix(length);
    }
}

void XmlAnswer::appendCharacter(std::string_view character)
{
    if (character == "&")
        m_document += "&amp;";
    else if (character == "<")
        m_document += "&lt;";
    else if (character == ">")
        m_document += "&gt;";
    else if (character == "\r") // a bare one would be read back as a line feed
        m_document += "&#13;";
    else if (character.size() > 1 && m_encoding == Encoding::Ascii)
        m_document += "&#" + std::to_string(static_cast<std::uint32_t>(codePoint(character))) + ";";
    else
        m_document += character;
}

} // namespace tarvex::wire
