#pragma once

#include <memory>
#include <QKeySequence>
#include <QMainWindow>

class AlertSheet;
class DocumentController;
class ProjectNameSheet;
class Sheet;
class SignInSheet;
class TarvexDocument;
struct WindowState;

namespace Ui {
class TarvexDocument;
}

/// The platform's keys for a command, and the one that window and manual name whatever the platform.
QList<QKeySequence> keysWith(Qt::Key named, QKeySequence::StandardKey command);

/// A document's window, with the sheets that come up on it: the layout, what is enabled, and every word round
/// the wheel. It decides nothing: it hands its outlets to the document, reports what the user does to it, and
/// shows the state it is given.
class DocumentWindow : public QMainWindow
{
    Q_OBJECT
public:
    /// Makes the window and its sheets, nothing connected yet. The controller must outlive the window.
    explicit DocumentWindow(DocumentController &controller);
    ~DocumentWindow() override;

    /// Sets the document's outlets and connects all controls, commands and sheets with its actions.
    void connectTo(TarvexDocument &document);

    void showState(const WindowState &state);
    /// Only the line at the bottom, seen at once: what is being done just now.
    void showStatement(const QString &text);

    /// The question whether to delete a set.
    AlertSheet *deleteAlert() const { return m_deleteAlert; }

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    /// The user wants the window closed; it stays until its document hides it.
    void closeRequested();

protected:
    void closeEvent(QCloseEvent *event) override;
    void childEvent(QChildEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    bool event(QEvent *event) override;

private:
    void makeSheets(DocumentController &controller);
    void fitScreen();
    void connectOutlets(TarvexDocument &document);
    void connectSheets(TarvexDocument &document);
    void connectCommands(TarvexDocument &document);
    void wrapSelectorIfNeeded();
    void makeRoomForStatement();
    void colourPlaceholder();

    DocumentController &m_controller;
    const std::unique_ptr<Ui::TarvexDocument> m_ui;
    ProjectNameSheet *m_projectName = nullptr;
    AlertSheet *m_deleteAlert = nullptr;
    Sheet *m_areaDetails = nullptr;
    Sheet *m_renameAreas = nullptr;
    Sheet *m_nextGoals = nullptr;
    SignInSheet *m_signIn = nullptr;
    Sheet *m_signUp = nullptr;
};
