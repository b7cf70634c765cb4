#include "AboutBox.h"
#include "AlertSheet.h"
#include "DocumentController.h"
#include "DocumentWindow.h"
#include "LinkOpener.h"
#include "TarvexDocument.h"
#include "WebAddresses.h"

#include <QDir>
#include <QFileInfo>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

constexpr int unimplemented = -4; // the platform's status for an operation that does not exist

void report(DocumentError *error)
{
    if (error)
        *error = {.domain = NSOSStatusErrorDomain, .code = unimplemented};
}

/// The path below the user's home, with a folder made there if nothing at all stands in its place.
QString pathInHome(const QString &path)
{
    QString expanded = QDir::homePath() + path;
    if (!QFileInfo::exists(expanded))
        QDir().mkpath(expanded);
    return expanded;
}

} // namespace

std::optional<QByteArray> TarvexDocument::dataOfType(const QString &, DocumentError *error) const
{
    report(error);
    return {};
}

bool TarvexDocument::readFromData(const QByteArray &, const QString &, DocumentError *error)
{
    report(error);
    return true;
}

QString TarvexDocument::displayName() const
{
    return u"Tarvex Cloud - Client for Mac OS X"_s;
}

QString TarvexDocument::windowTitleForDocumentDisplayName(const QString &) const
{
    return u"Tarvex Cloud - Client for Mac OS X"_s;
}

QString TarvexDocument::pathForApplicationSupportDirectory() const
{
    return pathInHome(u"/Library/Application Support/Tarvex Cloud/"_s);
}

QString TarvexDocument::pathForDocuments() const
{
    return pathInHome(u"/Documents"_s);
}

void TarvexDocument::gotoWebSite()
{
    m_controller.links().openLink(QUrl(WebAddresses::webSite));
}

void TarvexDocument::gotoTwitter()
{
    m_controller.links().openLink(QUrl(WebAddresses::twitter));
}

void TarvexDocument::gotoFacebook()
{
    m_controller.links().openLink(QUrl(WebAddresses::facebook));
}

void TarvexDocument::saveDocument()
{
    if (!m_window || !mayOpenSheet() || dataOfType(/*typeName=*/QString()))
        return;
    if (!m_saveAlert) {
        m_saveAlert = new AlertSheet(m_window.get());
        m_saveAlert->setObjectName(u"saveAlert"_s);
    }
    m_saveAlert->setTexts(
        tr("The document could not be saved."),
        tr("A wheel is not kept in a file. Every change you confirmed has already gone to the service. "
           "To keep a report of a set, choose Save as PDF."),
        tr("Close"), /*alternateButton=*/QString());
    beginSheet(m_saveAlert);
}

void TarvexDocument::showAbout()
{
    if (mayOpenSheet())
        showAboutBox(m_window.get());
}
