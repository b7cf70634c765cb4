#pragma once

#include "XKJsonError.h"

#include <mutex>
#include <optional>
#include <vector>

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
    void removeObserver(XKJsonObserver *observer);

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

private:
    bool refuseDepth();
    void changeTrace(const XKJsonError &newLastError);

    qint64 m_depth = 0;
    quint64 m_maxDepth = defaultMaxDepth;
    std::vector<XKJsonObserver *> m_observers;
    mutable std::mutex m_traceLock; // for readers elsewhere: only the thread at work writes
    XKJsonError m_lastError;
};
