#pragma once

#include "DocumentError.h"
#include "DocumentOutlets.h"
#include "PrintInfo.h"
#include "RenameAreasWindowController.h"
#include "TVXProject.h"
#include "WheelParent.h"
#include "WindowState.h"

#include <functional>
#include <memory>
#include <optional>
#include <QObject>
#include <QTimer>
#include <QVariantMap>

class AlertSheet;
class DocumentController;
class DocumentWindow;
class PrintOperation;
class RegisterViewController;
class ReportDialogs;

/// The name of a notification that a document changed. It is published for others; the product neither posts
/// nor observes it. The name is spelt so.
inline constexpr QLatin1String QRVDocumentCangedNotification("QRVDocumentChanged");

/// The application's controller: it signs in, loads the wheel and the sets, and has its window show them. A
/// document only in form: nothing is read from or written to disk, and the credentials live in memory.
///
/// Start-up and sign-in are defined in TarvexDocument.cpp, the loading and showing of the data and the set
/// selector in TarvexDocument+Selector.cpp, sign-up in TarvexDocument+SignUp.cpp, the commands on sets in
/// TarvexDocument+Sets.cpp, printing in TarvexDocument+Printing.cpp, the other sheets in
/// TarvexDocument+Sheets.cpp, what makes it a document in TarvexDocument+Shell.cpp.
class TarvexDocument : public QObject,
                       public DocumentOutlets,
                       public WheelParent,
                       public ComboBoxDataSource,
                       public RenameAreasParent
{
    Q_OBJECT
public:
    /// An empty project and no window yet. The controller must outlive the document.
    explicit TarvexDocument(DocumentController &controller);
    ~TarvexDocument() override;

    /// The name of the layout that holds the window.
    QString windowNibName() const;
    /// Loads the window from its layout, connects the outlets and prepares it. Once per document.
    void makeWindow();
    /// Turns the percent labels and starts the delay before the sign-in sheet.
    void windowControllerDidLoadNib();
    /// Null before makeWindow().
    QMainWindow *window() const;

    /// @name A document in form
    /// Nothing is kept in files: writing always fails, reading always succeeds and takes nothing.
    /// @{
    /// None; `error`, if given, says that the operation does not exist.
    std::optional<QByteArray> dataOfType(const QString &typeName, DocumentError *error = nullptr) const;
    /// True, and yet `error`, if given, says that the operation does not exist.
    bool readFromData(const QByteArray &data, const QString &ofType, DocumentError *error = nullptr);
    QString displayName() const;
    /// The same for every document: untitled ones are not numbered.
    QString windowTitleForDocumentDisplayName(const QString &displayName) const;
    /// @}

    /// Folders below the user's home, the same on every platform. Each is made unless something, be it a
    /// file, stands in its place; a failure of that is not reported.
    QString pathForApplicationSupportDirectory() const;
    QString pathForDocuments() const;

    /// The start-up load after a sign-in or sign-up: everything is fetched and shown, and from here on every
    /// request uses these credentials. Failures have been alerted when it returns; what arrived is shown.
    /// Throws std::out_of_range when an answer lacks part of its columns.
    void loadStartupDataForLogin(const QString &login, const QString &andPassword);
    /// Fetches the project's sets, then its areas.
    void startGettingData();
    /// Puts the area names into their labels; labels without an area keep what they show. Without any area
    /// the window says so.
    void setNamesForAreasOnWindow() override;
    /// Shows the selected set's percents and their average; with no set selected nothing changes.
    void updatePercentValues() override;
    /// Takes a click on a slice and opens the area's details; nothing happens while another sheet is up or
    /// when the project has no areas. The area may be empty.
    void showAreaDetails(const TVXAreaPtr &area, int ofIndex) override;
    /// The document of the application's main window, or null.
    TarvexDocument *currentDocument() const;

    /// The report of the selected set, whose goals are fetched for it and become those of the project on
    /// show; null without a selected set. The settings are not read and no error is ever told: goals that
    /// cannot be fetched are missing from the report, as the window's line says.
    std::shared_ptr<PrintOperation> printOperationWithSettings(const QVariantMap &settings,
                                                               QString *error = nullptr);

    int numberOfItemsInComboBox(const SourcedComboBox *comboBox) const override;
    QString comboBoxObjectValueForItemAtIndex(const SourcedComboBox *comboBox, int index) const override;
    std::shared_ptr<const void> comboBoxRecordAtIndex(const SourcedComboBox *comboBox,
                                                      int index) const override;
    /// The first set whose name is the very same string object, not an equal one; 0 where there is none.
    int comboBoxIndexOfItemWithStringValue(const SourcedComboBox *comboBox, const QString &string) const;

    TarvexView *wheelView() const override { return DocumentOutlets::wheelView(); }
    const QString &loginUserName() const { return m_loginUserName; }
    void setLoginUserName(const QString &loginUserName) { m_loginUserName = loginUserName; }
    const QString &loginPassword() const { return m_loginPassword; }
    void setLoginPassword(const QString &loginPassword) { m_loginPassword = loginPassword; }
    const TVXProjectPtr &project() const { return m_project; }
    void setProject(const TVXProjectPtr &project) { m_project = project; }
    /// The set that updatePercentValues() showed last; empty when it is gone from the project, which alone
    /// owns it.
    TVXSetsPtr currentSet() const { return m_currentSet.lock(); }
    void setCurrentSet(const TVXSetsPtr &currentSet) { m_currentSet = currentSet; }

public Q_SLOTS:
    /// The start-up timer's target: stops it and shows the sign-in sheet.
    void getUserNameAndPassword();
    void signIn();
    /// Closes the document; with a wheel on show it only ends the sheet, and the credentials are those of
    /// before.
    void cancel();
    /// Ends its sheets, hides the window and has the controller destroy the document.
    void close();
    /// Shows the sign-in sheet again, with an empty message line.
    void signInAgain();
    /// Fetches sets and areas anew with the credentials at hand, and keeps the selection. What cannot be
    /// fetched stays as it was.
    void reload();
    /// Tries to save and says in words why that is impossible.
    void saveDocument();
    /// These open a page in the user's browser and do nothing else.
    void gotoWebSite();
    void gotoTwitter();
    void gotoFacebook();
    void showAbout();

    /// Changes from the sign-in sheet to the sign-up sheet.
    void registerClicked();
    /// Changes back; nothing is sent.
    void cancelRegister();
    /// Checks the sign-up sheet's fields, has the service create the account and, if it did, signs in with
    /// the e-mail address. The name is spelt so.
    void cickRegister();
    /// Does nothing.
    void checkRegister();

    /// Opens the set-name sheet empty, for a new set.
    void addNewProject();
    /// Opens the set-name sheet with the current set's name; without a current set it only empties it.
    void editCurrentProject();
    /// Creates or renames on the service and fetches the sets anew.
    void projectNameSheetClickedOk();
    void projectNameSheetClickedCancel();
    /// Asks whether to delete the current set.
    void deleteCurrentProject();
    /// The end of that question; only AlertSheet::defaultReturn deletes. Nothing selected means the first
    /// set.
    void alertDeleteCurrentprojectEded(AlertSheet *alert, int code, void *context);
    /// Opens the rename-areas sheet for the wheel on show.
    void renameAreas();
    /// Opens the random-goal sheet for the current set; without one it does nothing.
    void getRandomGoal();

    /// These fetch the selected set's goals and then show the report, ask for a printer or ask for a file;
    /// without a selected set they do nothing.
    void previewPrint();
    void print();
    void saveAsPdf();

    void comboBoxSelectionDidChange();
    void comboBoxWillDismiss();
    void comboBoxSelectionIsChanging();

    /// A sheet has had something done on the service; the window says what came of it.
    void actionDidEnd(const ActionOutcome &outcome);

private:
    bool mayRegister();
    void createAccount();
    /// That an answer to signing in or up is a page or the like, as other programs send; else empty.
    QString hintOnStranger(const QString &answer) const;
    bool mayOpenSheet() const;
    void beginSheet(Sheet *sheet);
    /// Has the sign-in sheet's button say what cancel() would do.
    void wordCancel();
    TarvexDocument *documentToBorrowFrom() const;

    bool loadSets(TVXSetsList &sets);
    ActionOutcome createSet(const QString &name);
    ActionOutcome renameSet(const QString &name, qint64 idOfSets);
    void deleteSelectedSet();
    void reloadKeepingWhatFails();
    void appendWheelPieces();
    void showSelectedSet();
    void selectSetWithId(qint64 idOfSets);
    TVXSetsPtr selectedSet() const;
    std::shared_ptr<TVXSetsList> shownSets() const;

    WindowState windowState() const;
    void showState();
    /// What the window has to tell of the last action; empty takes the last one's back.
    void tell(const QString &lastDone, bool isInDoubt = false);
    void tellIncompleteAnswer();
    /// Runs requests that no sheet is up for: the window says what is being done.
    void whileSaying(const QString &doing, int requests, const std::function<void()> &action);
    void makeReport(void (ReportDialogs::*next)());
    ReportDialogs *makeReportDialogs(const std::shared_ptr<PrintOperation> &operation);

    DocumentController &m_controller;
    TVXProjectPtr m_project;
    QString m_loginUserName = QStringLiteral("");
    QString m_loginPassword = QStringLiteral("");
    std::optional<std::pair<QString, QString>> m_credentialsOfWheel; // while signing in again
    std::weak_ptr<TVXSets> m_currentSet;
    WindowState m_state; // what cannot be told from the project
    PrintInfo m_printInfo;
    QPointer<ReportDialogs> m_reportDialogs; // of the latest report; the window's
    std::unique_ptr<DocumentWindow> m_window;
    QPointer<QTimer> m_startGettingUserNameAndPassword;
    QPointer<RegisterViewController> m_registerController;
    QPointer<AlertSheet> m_saveAlert; // made when it is first needed
};

/// The controller of a sheet.
template<typename Controller>
Controller *controllerOf(const Sheet *sheet)
{
    return sheet ? sheet->findChild<Controller *>(QString(), Qt::FindDirectChildrenOnly) : nullptr;
}
