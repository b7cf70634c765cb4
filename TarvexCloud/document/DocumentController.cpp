#include "DocumentController.h"

#include "LinkOpener.h"
#include "TarvexDocument.h"
#include "TVXAlert.h"
#include "TVXExchange.h"
#include "UserManual.h"

#include <algorithm>
#include <QApplication>
#include <QFileDialog>
#include <QLoggingCategory>
#include <QMainWindow>
#include <QScopedValueRollback>
#include <QSettings>
#include <QStandardPaths>
#include <QUrl>
#include <stdexcept>

using namespace Qt::StringLiterals;

namespace {
Q_LOGGING_CATEGORY(tarvex, "tarvex")
constexpr int millisecondsBetweenTries = 20;
// Documents take nothing from their file, so its beginning is as good as the whole of it.
constexpr qint64 mostBytesRead = 65536;
} // namespace

DocumentController::DocumentController(TVXExchange &exchange, TVXAlert &alert, LinkOpener &links,
                                       std::chrono::milliseconds beforeSignIn)
    : m_exchange(exchange), m_alert(alert), m_links(links), m_beforeSignIn(beforeSignIn)
{
    qApp->installEventFilter(this);
    m_releasing.setSingleShot(true);
    connect(&m_releasing, &QTimer::timeout, this, &DocumentController::releaseClosed);
    // The toolkit's own file dialog would keep the folders that were visited.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, u"/dev/null"_s);
}

DocumentController::~DocumentController()
{
    qApp->removeEventFilter(this);
}

TarvexDocument *DocumentController::openUntitledDocument()
{
    return show(std::make_shared<TarvexDocument>(*this));
}

TarvexDocument *DocumentController::openFile(const QString &path)
{
    const QFileInfo information(path);
    QFile file(path);
    const auto document = std::make_shared<TarvexDocument>(*this);
    if (information.isFile() && file.open(QIODevice::ReadOnly) &&
        document->readFromData(file.read(mostBytesRead), information.suffix()))
        return show(document);
    m_alert.showError(
        tr("\u201C%1\u201D could not be opened. Check that the file is still there and that you may read it.")
            .arg(information.fileName()));
    return nullptr;
}

TarvexDocument *DocumentController::show(const std::shared_ptr<TarvexDocument> &document)
{
    m_documents.push_back(document);
    document->makeWindow();
    document->window()->show();
    return document.get();
}

void DocumentController::newDocument()
{
    if (!isBusy())
        openUntitledDocument();
}

QDir DocumentController::folderOfFiles()
{
    const QDir documents(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    return documents.exists() ? documents : QDir::home();
}

void DocumentController::openDocument()
{
    if (isBusy())
        return;
    auto *dialog = new QFileDialog(mainWindow(), tr("Open"), folderOfFiles().path());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    connect(dialog, &QFileDialog::fileSelected, this, &DocumentController::openFile);
    dialog->open();
}

void DocumentController::showManual()
{
    if (isBusy())
        return;
    const QString page = UserManual::firstPage(QDir(QCoreApplication::applicationDirPath()));
    if (!QFileInfo::exists(page) || !m_links.openLink(QUrl::fromLocalFile(page)))
        m_alert.showError(UserManual::notShown(page));
}

void DocumentController::documentDidClose(TarvexDocument *document)
{
    const auto closed = std::find_if(m_documents.begin(), m_documents.end(),
                                     [&](const auto &open) { return open.get() == document; });
    if (closed == m_documents.end())
        return;
    m_closed.push_back(*closed);
    m_documents.erase(closed);
    m_activated.removeAll(document->window());
    m_releasing.start(0);
    if (m_documents.empty())
        Q_EMIT lastDocumentClosed();
}

// A request waits in an event loop of its own, which may be inside the event that closed the document.
void DocumentController::releaseClosed()
{
    if (isBusy())
        m_releasing.start(millisecondsBetweenTries);
    else
        m_closed.clear();
}

void DocumentController::quit()
{
    while (!m_documents.empty())
        m_documents.back()->close();
    runWhenIdle([] { QApplication::quit(); }, [] {}); // while a request waits, it would be held back for good
}

QMainWindow *DocumentController::mainWindow() const
{
    return m_activated.isEmpty() ? nullptr : m_activated.last().data();
}

TarvexDocument *DocumentController::documentOfWindow(const QMainWindow *window) const
{
    for (const auto &document : m_documents)
        if (window && document->window() == window)
            return document.get();
    return nullptr;
}

bool DocumentController::isBusy() const
{
    return m_actionRunning || m_exchange.isBusy();
}

void DocumentController::runAction(const std::function<void()> &action,
                                   const std::function<void()> &endedEarly)
{
    if (isBusy())
        return;
    const QScopedValueRollback running(m_actionRunning, true);
    try {
        action();
    } catch (const std::out_of_range &error) {
        qCWarning(tarvex, "An action ended early: %s", error.what());
        endedEarly();
    }
}

void DocumentController::runWhenIdle(const std::function<void()> &action,
                                     const std::function<void()> &endedEarly)
{
    auto *attempts = new QTimer(this);
    connect(attempts, &QTimer::timeout, this, [this, attempts, action, endedEarly] {
        attempts->setInterval(millisecondsBetweenTries);
        if (isBusy())
            return;
        attempts->stop();
        attempts->deleteLater();
        runAction(action, endedEarly);
    });
    attempts->start(isBusy() ? millisecondsBetweenTries : 0);
}

bool DocumentController::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::WindowActivate) {
        auto *window = qobject_cast<QMainWindow *>(watched);
        if (documentOfWindow(window)) {
            m_activated.removeAll(window);
            m_activated.append(window);
        }
    }
    return QObject::eventFilter(watched, event);
}
