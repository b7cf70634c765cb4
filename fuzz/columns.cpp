// XML to columns. What was read is in proportion to the document, and written as a plain document it reads
// the same.

#include "Columns.h"
#include "Fuzz.h"

#include <array>
#include <QByteArray>

namespace {

constexpr std::array<std::string_view, 3> names = {"id", "name", "set"};

// A carriage return would come back as a line feed.
QByteArray asElement(std::string_view name, std::string_view text)
{
    const QByteArray tag(name.data(), static_cast<qsizetype>(name.size()));
    QByteArray inner(text.data(), static_cast<qsizetype>(text.size()));
    inner.replace('&', "&amp;").replace('<', "&lt;").replace('>', "&gt;").replace('\r', "&#13;");
    return '<' + tag + '>' + inner + "</" + tag + '>';
}

void requireSame(const Columns &columns, const Columns &again)
{
    for (std::size_t column = 0; column < names.size(); ++column) {
        require(columns.count(column) == again.count(column), "as many texts are read again");
        for (std::size_t i = 0; i < columns.count(column); ++i)
            require(columns.text(column, i) == again.text(column, i), "each text is read again");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    const QByteArrayView document(reinterpret_cast<const char *>(bytes), static_cast<qsizetype>(size));
    const std::optional<Columns> columns = Columns::read(document, names);
    if (!columns)
        return 0;
    std::size_t total = 0;
    QByteArray plain = "<all>";
    for (std::size_t column = 0; column < names.size(); ++column) {
        for (std::size_t i = 0; i < columns->count(column); ++i) {
            total += columns->text(column, i).size();
            plain += asElement(names[column], columns->text(column, i));
        }
    }
    constexpr std::size_t allowance = std::size_t(64) * 1024;
    require(total <= 4 * size + allowance, "no more text than the document warrants");
    const std::optional<Columns> again = Columns::read(plain + "</all>", names);
    require(again.has_value(), "what was read makes a document");
    requireSame(*columns, *again);
    return 0;
}
