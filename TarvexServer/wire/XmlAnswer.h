#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarvex::wire {

/// Builds the XML of a list answer: one flat <record> per record, and in it one element per column.
///
/// The client reads columns, not records: each record must bring every column of its answer once, and no
/// wrapper may bear a column's name.
class XmlAnswer
{
public:
    enum class Encoding {
        Utf8,
        Ascii, ///< characters beyond ASCII as character references, for an answer that is first read as ASCII
    };

    explicit XmlAnswer(Encoding encoding = Encoding::Utf8) : m_encoding(encoding)
    {
        m_document.reserve(usualSize);
    }

    void beginRecord() { m_document += "<record>"; }
    /// The text must be storable: well-formed UTF-8 without characters that XML cannot carry.
    void element(std::string_view name, std::string_view text);
    void element(std::string_view name, std::int64_t number);
    void endRecord() { m_document += "</record>"; }

    /// The finished document; the builder is spent afterwards.
    std::string finish();

private:
    void appendTag(std::string_view opening, std::string_view name);
    void appendText(std::string_view text);
    void appendSpecial(std::string_view character);

    static constexpr std::size_t usualSize = 4096;

    std::string m_document = R"(<?xml version="1.0" encoding="UTF-8"?><answer>)";
    Encoding m_encoding;
};

} // namespace tarvex::wire
