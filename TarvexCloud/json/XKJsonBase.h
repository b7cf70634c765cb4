#pragma once

#include <mutex>
#include <optional>
#include <QExplicitlySharedDataPointer>
#include <QList>
#include <QLoggingCategory>
#include <QSharedData>
#include <QString>
#include <vector>

/// Where the codec's two entries tell of their failures.
Q_DECLARE_LOGGING_CATEGORY(xkJson)

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
    static QString domain() { return QStringLiteral("org.quillmere.JSON.ErrorDomain"); }

    bool isNone() const { return !m_link; }
    /// As the enumeration has it; 0 for none.
    int code() const { return m_link ? static_cast<int>(m_link->code) : 0; }
    QString localizedDescription() const { return m_link ? m_link->description : QString(); }
    /// The error that was added just before this one, or none.
    XKJsonError underlyingError() const;

private:
    // One allocation per error: a deep nest of brackets that fails has an error for each of them.
    struct Link : QSharedData
    {
        Link(XKJsonErrorCode itsCode, const QString &itsDescription, const XKJsonError &itsUnderlying)
            : code(itsCode), description(itsDescription), underlying(itsUnderlying.m_link)
        {
        }
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

/// Told just before and just after a parser's or writer's error trace changes. The key is "errorTrace".
class XKJsonObserver
{
public:
    virtual ~XKJsonObserver() = default;
    virtual void willChangeValueForKey(const QString &key) = 0;
    virtual void didChangeValueForKey(const QString &key) = 0;
};

/// What the parser and the writer share: the error trace and the nesting limit. One instance serves one
/// thread at a time; only the error trace may be read from another one meanwhile.
class XKJsonBase
{
public:
    XKJsonBase(const XKJsonBase &) = delete;
    XKJsonBase &operator=(const XKJsonBase &) = delete;

    /// The deepest nesting of dictionaries and arrays that is accepted; 0 means no limit.
    quint64 maxDepth() const { return m_maxDepth; }
    void setMaxDepth(quint64 maxDepth) { m_maxDepth = maxDepth; }
    static constexpr quint64 defaultMaxDepth = 512;

    /// Every error of the last call, oldest first; nothing if there was none.
    std::optional<XKJsonErrorList> errorTrace() const;
    /// The same in one line for a log; "(null)" if there was none.
    QString errorTraceDescription() const;

    void addErrorWithCode(XKJsonErrorCode code, const QString &description);
    void clearErrorTrace();

    /// Observers are not owned; each must be removed before it goes, and must not start another call.
    void addObserver(XKJsonObserver *observer) { m_observers.push_back(observer); }
    void removeObserver(XKJsonObserver *observer) { std::erase(m_observers, observer); }

protected:
    XKJsonBase() = default;
    ~XKJsonBase() = default;

    XKJsonError lastError() const { return m_lastError; }

    /// Counts one container entered. False, with the error added, when the limit is passed.
    bool enterContainer()
    {
        return m_maxDepth == 0 || static_cast<quint64>(++m_depth) <= m_maxDepth || refuseDepth();
    }
    void leaveContainer() { --m_depth; }
    /// Containers now open; without a limit it only ever falls, and means nothing.
    qint64 depth() const { return m_depth; }
    void resetDepth() { m_depth = 0; }
    // Each of these adds the error and is false.
    bool refuse(XKJsonErrorCode code, QAnyStringView description);
    bool refuseDepth() { return refuse(XKJsonErrorCode::Depth, u"Nested too deep"); }

private:
    void changeTrace(const XKJsonError &newLastError);

    qint64 m_depth = 0;
    quint64 m_maxDepth = defaultMaxDepth;
    std::vector<XKJsonObserver *> m_observers;
    mutable std::mutex m_traceLock; // for readers elsewhere: only the thread at work writes
    XKJsonError m_lastError;
};
