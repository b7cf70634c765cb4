#include "DocumentController.h"

#include "TarvexDocument.h"
#include "TVXExchange.h"

#include <algorithm>
#include <QApplication>
#include <QLoggingCategory>
#include <QMainWindow>
#include <QScopedValueRollback>
#include <QTimer>
#include <stdexcept>

namespace {
Q_LOGGING_CATEGORY(tarvex, "tarvex")
constexpr int millisecondsBetweenTries = 20;
} // namespace

DocumentController::DocumentController(TVXExchange &exchange, TVXAlert &alert)
    : m_exchange(exchange), m_alert(alert)
{
    qApp->installEventFilter(this);
}

DocumentController::~DocumentController()
{
    qApp->removeEventFilter(this);
}

TarvexDocument *DocumentController::openUntitledDocument()
{
    m_documents.push_back(std::make_shared<TarvexDocument>(*this));
    TarvexDocument *document = m_documents.back().get();
    document->makeWindow();
    document->window()->show();
    return document;
}

std::shared_ptr<TarvexDocument> DocumentController::sharedOf(const TarvexDocument *document) const
{
    const auto found = std::find_if(m_documents.begin(), m_documents.end(),
                                    [&](const auto &open) { return open.get() == document; });
    return found == m_documents.end() ? nullptr : *found;
}

void DocumentController::documentDidClose(TarvexDocument *document)
{
    const std::shared_ptr<TarvexDocument> closed = sharedOf(document);
    if (!closed)
        return;
    std::erase(m_documents, closed);
    m_activated.removeAll(document->window());
    // The closing event may have come from one of the document's own widgets.
    QTimer::singleShot(0, this, [closed] {});
    if (m_documents.empty())
        Q_EMIT lastDocumentClosed();
}

void DocumentController::quit()
{
    while (!m_documents.empty())
        m_documents.back()->close();
    QApplication::quit();
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
    const auto keptAlive = m_documents; // an action may close the document it belongs to
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
    const auto tryNow = [this, action, endedEarly] {
        if (isBusy())
            runWhenIdle(action, endedEarly);
        else
            runAction(action, endedEarly);
    };
    QTimer::singleShot(isBusy() ? millisecondsBetweenTries : 0, this, tryNow);
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
