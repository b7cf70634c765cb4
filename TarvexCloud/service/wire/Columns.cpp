#include "Columns.h"

#include <algorithm>
#include <expat.h>
#include <limits>
#include <memory>

namespace {

constexpr std::size_t firstPiece = 32 * 1024;
// What all texts together may hold: plain records stay far below the length of their document.
constexpr std::size_t textPerByte = 4;
constexpr std::size_t textAllowance = 64 * 1024;
// Each declared default costs time at every element it applies to.
constexpr int mostAttributeDeclarations = 64;

struct ParserDeleter
{
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};

} // namespace

class ColumnReader
{
public:
    ColumnReader(QByteArrayView xml, std::span<const std::string_view> names)
        : m_xml(xml), m_names(names),
          m_textLeft(textPerByte * static_cast<std::size_t>(xml.size()) + textAllowance),
          m_parser(XML_ParserCreate(nullptr))
    {
        m_columns.m_columns.resize(names.size());
    }

    std::optional<Columns> read()
    {
        if (!m_parser || static_cast<std::size_t>(m_xml.size()) > longestDocument)
            return std::nullopt;
        XML_SetUserData(m_parser.get(), this);
        XML_SetElementHandler(m_parser.get(), elementStarts, elementEnds);
        XML_SetCharacterDataHandler(m_parser.get(), characters);
        XML_SetEntityDeclHandler(m_parser.get(), entityDeclared);
        XML_SetAttlistDeclHandler(m_parser.get(), attributeDeclared);
        if (!parse())
            return std::nullopt;
        m_columns.m_text.shrink_to_fit();
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

    /// In pieces, because the parser copies what it is given. A piece is at least as long as what is still
    /// unfinished: otherwise a very long tag would be looked at from its start once per small piece.
    bool parse()
    {
        std::size_t fed = 0;
        const auto size = static_cast<std::size_t>(m_xml.size());
        std::size_t piece = firstPiece;
        while (size - fed > piece) {
            if (!parse(fed, piece, /*isFinal=*/false))
                return false;
            fed += piece;
            const XML_Index done = XML_GetCurrentByteIndex(m_parser.get());
            piece = std::max(firstPiece, fed - static_cast<std::size_t>(std::max<XML_Index>(done, 0)));
        }
        return parse(fed, size - fed, /*isFinal=*/true);
    }

    bool parse(std::size_t from, std::size_t length, bool isFinal)
    {
        return XML_Parse(m_parser.get(), m_xml.data() + from, static_cast<int>(length), isFinal ? 1 : 0) ==
               XML_STATUS_OK;
    }

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

    std::size_t columnOf(std::string_view name) const
    {
        const auto found = std::find(m_names.begin(), m_names.end(), name);
        return static_cast<std::size_t>(found - m_names.begin());
    }

    void refuse() { XML_StopParser(m_parser.get(), XML_FALSE); }

    const QByteArrayView m_xml;
    const std::span<const std::string_view> m_names;
    Columns m_columns;
    std::vector<OpenElement> m_open; // the chosen elements around the current place, outermost first
    std::size_t m_depth = 0;
    std::size_t m_textLeft;
    int m_attributeDeclarations = 0;
    const std::unique_ptr<XML_ParserStruct, ParserDeleter> m_parser;
};

std::optional<Columns> Columns::read(QByteArrayView xml, std::span<const std::string_view> names)
{
    return ColumnReader(xml, names).read();
}
