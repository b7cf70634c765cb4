#pragma once

#include "WindowServices.h"

#include <chrono>
#include <memory>
#include <QDir>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <vector>

class LinkOpener;
class QMainWindow;
class TarvexDocument;

/// The open documents, which of their windows is the application's main window, and the one way in which user
/// actions run.
class DocumentController : public QObject, public WindowServices
{
    Q_OBJECT
public:
    /// From a window's appearance to that of its sign-in sheet.
    static constexpr std::chrono::milliseconds timeBeforeSignIn{500};

    /// All objects are shared by the documents and must outlive the controller.
    DocumentController(TVXExchange &exchange, TVXAlert &alert, LinkOpener &links,
                       std::chrono::milliseconds beforeSignIn = timeBeforeSignIn);
    ~DocumentController() override;

    /// Where dialogs that ask for a file begin: the user's documents, or without such a folder the home.
    static QDir folderOfFiles();

    TVXExchange &exchange() const override { return m_exchange; }
    TVXAlert &alert() const override { return m_alert; }
    LinkOpener &links() const { return m_links; }
    std::chrono::milliseconds beforeSignIn() const { return m_beforeSignIn; }

    /// Opens an untitled document and shows its window. The controller owns it until it is closed.
    TarvexDocument *openUntitledDocument();
    /// The same for a document that has read a file; null after an alert if the file cannot be read.
    TarvexDocument *openFile(const QString &path);
    /// Forgets the document; it is destroyed once the event that closed it has been handled.
    void documentDidClose(TarvexDocument *document);
    const std::vector<std::shared_ptr<TarvexDocument>> &documents() const { return m_documents; }

    /// The document window the user worked in last, also while a sheet or an alert is in front of it; null
    /// when none of those open has been active yet.
    QMainWindow *mainWindow() const;
    /// The document of that window, or null.
    TarvexDocument *documentOfWindow(const QMainWindow *window) const;

    bool isBusy() const override;
    void runAction(const std::function<void()> &action, const std::function<void()> &endedEarly) override;
    void runWhenIdle(const std::function<void()> &action, const std::function<void()> &endedEarly) override;

    bool eventFilter(QObject *watched, QEvent *event) override;

public Q_SLOTS:
    void newDocument();
    /// Asks for a file to open.
    void openDocument();
    /// Opens the manual in whatever shows web pages; tells where it is if nothing does.
    void showManual();
    /// Closes every document, then ends the application.
    void quit();

Q_SIGNALS:
    void lastDocumentClosed();

private:
    TarvexDocument *show(const std::shared_ptr<TarvexDocument> &document);
    void releaseClosed();

    TVXExchange &m_exchange;
    TVXAlert &m_alert;
    LinkOpener &m_links;
    const std::chrono::milliseconds m_beforeSignIn;
    std::vector<std::shared_ptr<TarvexDocument>> m_documents;
    // The event that closes a document may come from one of its own widgets, so it outlives that event.
    std::vector<std::shared_ptr<TarvexDocument>> m_closed;
    QTimer m_releasing;
    QList<QPointer<QMainWindow>> m_activated; // least recently active first
    bool m_actionRunning = false;
};
