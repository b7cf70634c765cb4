#pragma once

#include <QExplicitlySharedDataPointer>
#include <QList>
#include <QSharedData>
#include <QString>

/// What kind of thing went wrong; shared by the parser and the writer.
enum class XKJsonErrorCode {
    Unsupported = 1,      ///< a value that JSON cannot hold (writer)
    Number = 2,           ///< a malformed number
    Parse = 3,            ///< something else stands where this was expected
    Fragment = 4,         ///< not a dictionary or an array at the top
    ControlCharacter = 5, ///< a raw control character in a string
    Unicode = 6,          ///< a broken \u escape, or half a surrogate pair in the text itself
    Depth = 7,            ///< nested too deep
    Escape = 8,           ///< an unknown escape
    TrailingComma = 9,
    TrailingGarbage = 10, ///< text after the value
    EndOfInput = 11,
    NoInput = 12,
};

/// One error of the codec. It points at the error added just before it, so the last one leads to the first.
/// A cheap, immutable value; one made by default is none.
class XKJsonError
{
public:
    XKJsonError() = default;
    XKJsonError(XKJsonErrorCode code, const QString &description, const XKJsonError &underlying);

    /// The domain of all errors of the codec.
    static QString domain();

    bool isNone() const { return !m_link; }
    /// As the enumeration has it; 0 for none.
    int code() const;
    QString localizedDescription() const;
    /// The error that was added just before this one, or none.
    XKJsonError underlyingError() const;

private:
    // One allocation per error: a deep nest of brackets that fails has an error for each of them.
    struct Link : QSharedData
    {
        Link(XKJsonErrorCode linkCode, const QString &linkDescription,
             const QExplicitlySharedDataPointer<Link> &linkUnderlying);
        ~Link();
        Link(const Link &) = delete;
        Link &operator=(const Link &) = delete;

        XKJsonErrorCode code;
        QString description;
        QExplicitlySharedDataPointer<Link> underlying;
    };

    QExplicitlySharedDataPointer<Link> m_link;
};

using XKJsonErrorList = QList<XKJsonError>;
