#pragma once

#include "XKJsonBase.h"
#include "XKJsonCursor.h"
#include "XKJsonValue.h"

#include <QVarLengthArray>
#include <string>

class XKJsonArena;

/// A strict reader of JSON text. Stricter than RFC 8259 in that a dictionary or an array must stand at the
/// top. Nesting costs heap, never machine stack. Odd, and kept on purpose, since such texts have always been
/// read so:
///
/// - Commas between elements and between members may be missing. One too many is an error.
/// - Vertical tab and form feed are white space too.
/// - The text ends at its first zero unit, as text handed to C would. A string that the end cuts short ends
///   with error 11 straight behind an escape, and otherwise with error 5 about a control character 0x0.
/// - Two escapes of a surrogate pair make one unit: the lower sixteen bits of the first times 1024 plus the
///   second less 0xDC00. \\uDFFF is no second one. A pair in the text itself stays as it is, and half a pair
///   is an error.
/// - A number is a 64-bit integer or, with a fraction, an exponent or more digits, an exact decimal; so is
///   the least 64-bit integer.
/// - Without a limit of nesting every failed container still tells its own error: a million open brackets a
///   million.
class XKJsonParser : public XKJsonBase
{
public:
    /// The tree, or none: then errorTrace() tells why, and `error`, if given, receives the last error of it.
    /// The tree keeps the text and shares its strings. Of members with one key the last one counts.
    XKJsonValue objectWithString(const QString &text, XKJsonError *error = nullptr);

private:
    // A container being read. What it holds so far stands on the stack of nodes.
    struct Open
    {
        XKJsonKind kind;
        qsizetype first;
    };

    bool scanText(const QString &text, XKJsonValue &tree);
    bool scanDocument(XKJsonCursor &c);
    /// Goes on in the innermost open container: reads its next value, or closes it.
    bool scanItem(XKJsonCursor &c);
    bool scanKey(XKJsonCursor &c);
    // Each of these puts the value on the stack, or opens the container.
    bool scanValue(XKJsonCursor &c);
    bool scanRestOfWord(XKJsonCursor &c, QStringView rest, const XKJsonNode &value, const char *expectation);
    bool scanNumber(XKJsonCursor &c);
    bool scanRestOfString(XKJsonCursor &c);
    bool scanRestOfStringWithEscapes(XKJsonCursor &c, QStringView run);
    bool scanEscape(XKJsonCursor &c, char16_t &unit);
    bool scanUnicodeChar(XKJsonCursor &c, char16_t &unit);
    bool scanHexQuad(XKJsonCursor &c, char16_t &quad);

    bool open(XKJsonKind kind);
    void close();
    bool refuseUnit(XKJsonErrorCode code, const char *description, unsigned value);
    bool refuseContainer(XKJsonErrorCode code, const char *description);
    bool abandonContainer();
    void addErrorsOfOpenContainers();

    // So long that a small text needs no memory for them.
    QVarLengthArray<XKJsonNode, 64> m_nodes; // read in open containers, the innermost one's last
    QVarLengthArray<Open, 16> m_open;
    std::u16string m_unescaped; // in use for one string at a time
    XKJsonArena *m_arena = nullptr;
};
