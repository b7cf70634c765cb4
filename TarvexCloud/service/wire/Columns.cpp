#include "Columns.h"

#include <expat.h>
#include <limits>
#include <memory>

// Enough for most answers: the goals of an area, the areas, the sets.
constexpr std::size_t usualCount = 64;
// What all texts together may hold: plain records stay far below the length of their document.
constexpr std::size_t textPerByte = 4;
constexpr std::size_t textAllowance = std::size_t(64) * 1024;
// Each declared default costs time at every element it applies to.
constexpr int mostAttributeDeclarations = 64;

class ColumnReader
{
public:
    ColumnReader(QByteArrayView xml, std::span<const std::string_view> names)
        : m_xml(xml), m_names(names),
          m_textLeft(textPerByte * static_cast<std::size_t>(xml.size()) + textAllowance),
          m_parser(XML_ParserCreate(nullptr), XML_ParserFree)
    {
        m_columns.m_columns.resize(names.size());
        for (auto &slots : m_columns.m_columns)
            slots.reserve(usualCount);
        m_columns.m_text.reserve(static_cast<std::size_t>(xml.size()) / 2);
    }

    std::optional<Columns> read()
    {
        if (!m_parser || static_cast<std::size_t>(m_xml.size()) > longestDocument)
            return std::nullopt;
        XML_SetUserData(m_parser.get(), this);
        XML_SetElementHandler(m_parser.get(), elementStarts, elementEnds);
        XML_SetCharacterDataHandler(m_parser.get(), characters);
        XML_SetEntityDeclHandler(m_parser.get(), entityDeclared);
        XML_SetSkippedEntityHandler(m_parser.get(), entitySkipped);
        XML_SetAttlistDeclHandler(m_parser.get(), attributeDeclared);
        // In a single call: expat copies the document either way, but looks at every byte once more when it
        // comes in pieces.
        if (XML_Parse(m_parser.get(), m_xml.data(), static_cast<int>(m_xml.size()), /*isFinal=*/1) !=
            XML_STATUS_OK)
            return std::nullopt;
        return std::move(m_columns);
    }

private:
    // Slots count in 32 bits, and re-encoding can double a document.
    static constexpr std::size_t longestDocument = std::numeric_limits<std::uint32_t>::max() / 2;

    struct OpenElement
    {
        std::size_t depth = 0;
        std::size_t column = 0;
        std::size_t index = 0;
    };

    static void XMLCALL elementStarts(void *reader, const XML_Char *name, const XML_Char **)
    {
        static_cast<ColumnReader *>(reader)->open(name);
    }

    static void XMLCALL elementEnds(void *reader, const XML_Char *)
    {
        static_cast<ColumnReader *>(reader)->close();
    }

    static void XMLCALL characters(void *reader, const XML_Char *text, int length)
    {
        auto *self = static_cast<ColumnReader *>(reader);
        if (!self->m_open.empty())
            self->m_columns.m_text.append(text, static_cast<std::size_t>(length));
    }

    static void XMLCALL entityDeclared(void *reader, const XML_Char *, int, const XML_Char *, int,
                                       const XML_Char *, const XML_Char *, const XML_Char *, const XML_Char *)
    {
        static_cast<ColumnReader *>(reader)->refuse();
    }

    /// What an external document type might declare is never read, and its text would be missing.
    static void XMLCALL entitySkipped(void *reader, const XML_Char *, int)
    {
        static_cast<ColumnReader *>(reader)->refuse();
    }

    static void XMLCALL attributeDeclared(void *reader, const XML_Char *, const XML_Char *, const XML_Char *,
                                          const XML_Char *, int)
    {
        auto *self = static_cast<ColumnReader *>(reader);
        if (++self->m_attributeDeclarations > mostAttributeDeclarations)
            self->refuse();
    }

    void open(const char *name)
    {
        ++m_depth;
        const std::size_t column = columnOf(name);
        if (column == m_names.size())
            return;
        std::vector<Columns::Slot> &slots = m_columns.m_columns[column];
        m_open.push_back({m_depth, column, slots.size()});
        const auto begin = static_cast<std::uint32_t>(m_columns.m_text.size());
        slots.push_back({begin, begin});
    }

    void close()
    {
        if (!m_open.empty() && m_open.back().depth == m_depth) {
            const OpenElement &element = m_open.back();
            Columns::Slot &slot = m_columns.m_columns[element.column][element.index];
            slot.end = static_cast<std::uint32_t>(m_columns.m_text.size());
            const std::size_t length = slot.end - slot.begin;
            m_open.pop_back();
            if (length > m_textLeft)
                return refuse();
            m_textLeft -= length;
        }
        --m_depth;
    }

    std::size_t columnOf(const char *name) const
    {
        std::size_t column = 0;
        while (column < m_names.size() && !isSame(name, m_names[column]))
            ++column;
        return column;
    }

    /// Most names differ in their first letter: comparing by hand beats measuring the length first.
    static bool isSame(const char *name, std::string_view wanted)
    {
        for (const char c : wanted) {
            if (*name++ != c)
                return false;
        }
        return *name == '\0';
    }

    void refuse() { XML_StopParser(m_parser.get(), XML_FALSE); }

    const QByteArrayView m_xml;
    const std::span<const std::string_view> m_names;
    Columns m_columns;
    std::vector<OpenElement> m_open; // the chosen elements around the current place, outermost first
    std::size_t m_depth = 0;
    std::size_t m_textLeft;
    int m_attributeDeclarations = 0;
    const std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> m_parser;
};

std::optional<Columns> Columns::read(QByteArrayView xml, std::span<const std::string_view> names)
{
    return ColumnReader(xml, names).read();
}
