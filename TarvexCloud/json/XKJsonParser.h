#pragma once

#include "XKJsonBase.h"
#include "XKJsonNodeStack.h"
#include "XKJsonShapes.h"
#include "XKJsonValue.h"

#include <string>

/// A strict reader of JSON text. Stricter than RFC 8259 in that a dictionary or an array must stand at the
/// top, looser in that commas between elements and members may be missing.
///
/// The text ends at its first zero unit, as text handed to C would. Nesting costs heap, never machine stack.
class XKJsonParser : public XKJsonBase
{
public:
    /// The tree, or none: then errorTrace() tells why, and `error`, if given, receives the last error of it.
    /// The tree keeps the text and shares its strings. Of members with one key the last one counts.
    XKJsonValue objectWithString(const QString &text, XKJsonError *error = nullptr);

private:
    enum class Step { Failed, Scanned, Opened };

    XKJsonValue treeOf(const QString &text);
    bool scanDocument();
    // These two go on with the innermost open container: to its end, or to where another opens inside it.
    Step scanRestOfArray(bool isAfterValue);
    Step scanRestOfDictionary(bool isAfterValue);
    // What takes the cursor as an argument does so for it to stay in a register of these two.
    Step scanValue(const char16_t *&c);
    bool scanKey(const char16_t *&c);
    bool scanRestOfKey(const char16_t *&c);
    bool scanComma(const char16_t *&c);
    bool scanRestOfTrue(const char16_t *&c, XKJsonNode &value);
    bool scanRestOfFalse(const char16_t *&c, XKJsonNode &value);
    bool scanRestOfNull(const char16_t *&c, XKJsonNode &value);
    template<std::size_t size>
    bool scanLiteral(const char16_t *&c, const char16_t (&rest)[size]);
    bool scanNumber(const char16_t *&c, XKJsonNode &number);
    bool scanRestOfString(const char16_t *&c, XKJsonNode &string);
    bool scanRestOfStringWithEscapes(XKJsonNode &string);
    bool scanEscape();
    bool scanUnicodeChar(char16_t &unit);
    bool scanLowSurrogate(char16_t &unit);
    bool scanHexQuad(char16_t &quad);
    bool scanIsAtEnd();
    void skipSpaces(const char16_t *&c);

    Step open(XKJsonKind kind);
    void foreseeMembers();
    void close(const XKJsonNode &container);
    void closeDictionary();
    /// Where on the stack the members of the innermost dictionary begin.
    std::size_t firstMember() const { return m_open + 2; }
    void addErrorsOfOpenContainers();
    void addErrorOfMember(std::size_t keyPlace);
    bool refuse(XKJsonErrorCode code, const char *description);
    Step fail(XKJsonErrorCode code, const char *description)
    {
        refuse(code, description);
        return Step::Failed;
    }
    bool refuseUnit(XKJsonErrorCode code, const char *description, unsigned value);

    static constexpr std::size_t noContainer = ~std::size_t(0);

    const char16_t *m_c = nullptr; // the cursor
    const char16_t *m_end = nullptr;
    XKJsonArena *m_arena = nullptr;
    XKJsonNodeStack m_stack;
    std::size_t m_open = noContainer; // where on the stack the innermost open container stands
    XKJsonShapes m_shapes;
    std::u16string m_unescaped;
    qptrdiff m_indent = 0; // of the last line, in blanks
};
