#pragma once

#include "XKJsonBase.h"
#include "XKJsonNodeStack.h"
#include "XKJsonShapes.h"
#include "XKJsonText.h"
#include "XKJsonValue.h"

#include <vector>

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
    enum class Step {
        Failed,
        Scanned, ///< a whole value
        Opened,  ///< a container, up to its first value
        Awaited, ///< what stands before a value, which must follow
    };

    bool scanText(const QString &text, XKJsonValue &tree);
    bool scanDocument();
    // What takes the cursor as an argument does so for it to stay in a register of scanDocument().
    Step scanValue(const char16_t *&c);
    // These go on in the innermost open container: to its end, or to where another value begins.
    Step scanToValue(const char16_t *&c, bool isAfterValue);
    Step scanToElement(const char16_t *&c, bool isAfterValue);
    Step scanToMember(const char16_t *&c, bool isAfterValue);
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
    bool scanRestOfStringWithEscapes(const char16_t *end, bool mayHaveSurrogates, XKJsonNode &string);
    bool scanEscape(char16_t &unit);
    bool scanUnicodeChar(char16_t &unit);
    bool scanLowSurrogate(char16_t &unit);
    bool scanHexQuad(char16_t &quad);
    bool scanIsAtEnd();
    void skipSpaces(const char16_t *&c);

    Step open(XKJsonKind kind);
    void foreseeMembers();
    void close(const XKJsonNode &container);
    void closeArray();
    void closeDictionary();
    /// Where on the stack the members of the innermost dictionary begin.
    std::size_t firstMember() const { return m_open + 2; }
    void addErrorsOfOpenContainers();
    void addErrorOfValue(std::size_t place);
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
    XKJsonText::Limit m_limit;     // of the text
    XKJsonArena *m_arena = nullptr;
    XKJsonNodeStack m_stack;
    std::size_t m_open = noContainer; // where on the stack the innermost open container stands
    XKJsonShapes m_shapes;
    std::vector<char16_t> m_unescaped; // in use for one string at a time
    XKJsonText::Indent m_indent;
};
