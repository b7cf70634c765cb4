#include "XKJsonError.h"

#include <utility>

using namespace Qt::StringLiterals;

XKJsonError::Link::Link(XKJsonErrorCode linkCode, const QString &linkDescription,
                        const QExplicitlySharedDataPointer<Link> &linkUnderlying)
    : code(linkCode), description(linkDescription), underlying(linkUnderlying)
{
}

// Lets go of the chain link by link, since millions of them would not fit the machine stack.
XKJsonError::Link::~Link()
{
    QExplicitlySharedDataPointer<Link> link = std::exchange(underlying, {});
    while (link && link->ref.loadAcquire() == 1)
        link = std::exchange(link->underlying, {});
}

XKJsonError::XKJsonError(XKJsonErrorCode code, const QString &description, const XKJsonError &underlying)
    : m_link(new Link(code, description, underlying.m_link))
{
}

QString XKJsonError::domain()
{
    return u"org.quillmere.JSON.ErrorDomain"_s;
}

int XKJsonError::code() const
{
    return m_link ? static_cast<int>(m_link->code) : 0;
}

QString XKJsonError::localizedDescription() const
{
    return m_link ? m_link->description : QString();
}

XKJsonError XKJsonError::underlyingError() const
{
    XKJsonError error;
    if (m_link)
        error.m_link = m_link->underlying;
    return error;
}
