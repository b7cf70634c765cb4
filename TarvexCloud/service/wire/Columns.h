#pragma once

#include <cstdint>
#include <optional>
#include <QByteArrayView>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The texts of chosen elements of an XML document, one column per element name, each in document order.
///
/// Where an element stands does not matter: the root counts, and so does one inside another. Its text is the
/// character data of everything inside it. Names are compared as written, prefix included.
class Columns
{
public:
    /// Nothing unless the bytes are a well-formed document to their very end. Declarations of entities and
    /// references to unknown ones are refused, nothing outside the document is ever fetched, and so is a
    /// document whose nesting would multiply its text: what is read stays in proportion to what arrived.
    static std::optional<Columns> read(QByteArrayView xml, std::span<const std::string_view> names);

    /// How many elements the column has; columns are numbered as the names were given.
    std::size_t count(std::size_t column) const { return m_columns[column].size(); }

    /// The text in UTF-8, valid as long as this object.
    /// @throws std::out_of_range when the column has no such element.
    std::string_view text(std::size_t column, std::size_t index) const
    {
        const Slot slot = m_columns[column].at(index);
        return {m_text.data() + slot.begin, slot.end - slot.begin};
    }

private:
    friend class ColumnReader;

    // The text of an element is one stretch of the text of all: what lies inside it came while it was open.
    struct Slot
    {
        std::uint32_t begin = 0;
        std::uint32_t end = 0;
    };

    std::string m_text;
    std::vector<std::vector<Slot>> m_columns;
};
