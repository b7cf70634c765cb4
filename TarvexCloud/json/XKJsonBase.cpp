#include "XKJsonBase.h"

#include <QStringList>
#include <utility>

using namespace Qt::StringLiterals;

Q_LOGGING_CATEGORY(xkJson, "tarvex.json")

// Lets go of the chain link by link, since millions of them would not fit the machine stack.
XKJsonError::Link::~Link()
{
    QExplicitlySharedDataPointer<Link> link = std::exchange(underlying, {});
    while (link && link->ref.loadAcquire() == 1)
        link = std::exchange(link->underlying, {});
}

XKJsonError::XKJsonError(XKJsonErrorCode code, const QString &description, const XKJsonError &underlying)
    : m_link(new Link(code, description, underlying))
{
}

XKJsonError XKJsonError::underlyingError() const
{
    XKJsonError error;
    if (m_link)
        error.m_link = m_link->underlying;
    return error;
}

std::optional<XKJsonErrorList> XKJsonBase::errorTrace() const
{
    XKJsonError error;
    {
        const std::lock_guard lock(m_traceLock);
        error = m_lastError;
    }
    if (error.isNone())
        return std::nullopt;
    XKJsonErrorList trace;
    for (; !error.isNone(); error = error.underlyingError())
        trace.prepend(error);
    return trace;
}

QString XKJsonBase::errorTraceDescription() const
{
    const std::optional<XKJsonErrorList> trace = errorTrace();
    if (!trace)
        return u"(null)"_s;
    QStringList errors;
    for (const XKJsonError &error : *trace)
        errors.append("Error Domain=%1 Code=%2 \"%3\""_L1.arg(
            XKJsonError::domain(), QString::number(error.code()), error.localizedDescription()));
    return u'(' + errors.join(", "_L1) + u')';
}

void XKJsonBase::addErrorWithCode(XKJsonErrorCode code, const QString &description)
{
    changeTrace(XKJsonError(code, description, m_lastError));
}

void XKJsonBase::clearErrorTrace()
{
    if (!m_lastError.isNone() || !m_observers.empty())
        changeTrace(XKJsonError());
}

bool XKJsonBase::refuse(XKJsonErrorCode code, QAnyStringView description)
{
    addErrorWithCode(code, description.toString());
    return false;
}

void XKJsonBase::changeTrace(const XKJsonError &newLastError)
{
    static const QString key = u"errorTrace"_s;
    const auto observers = m_observers; // an observer may take itself off the list
    for (XKJsonObserver *observer : observers)
        observer->willChangeValueForKey(key);
    XKJsonError old = newLastError;
    {
        const std::lock_guard lock(m_traceLock);
        std::swap(m_lastError, old);
    }
    for (XKJsonObserver *observer : observers)
        observer->didChangeValueForKey(key);
}
