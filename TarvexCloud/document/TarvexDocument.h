#pragma once

#include "DocumentError.h"
#include "ElidedLabel.h"
#include "PrintInfo.h"
#include "RenameAreasWindowController.h"
#include "SourcedComboBox.h"
#include "TVXProject.h"
#include "WheelParent.h"

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <QObject>
#include <QPageRanges>
#include <QPointer>
#include <QTimer>
#include <QVariantMap>

class AlertSheet;
class AreaWindowController;
class BusyIndicator;
class DialArea;
class DocumentController;
class MessageLine;
class PrintOperation;
class ProjectNameSheet;
class QLabel;
class QLineEdit;
class QMainWindow;
class QPrinter;
class RandomGoalWindowController;
class RegisterViewController;
class RotatedLabel;
class Sheet;
class SignInSheet;
class TarvexView;

/// The name of a notification that a document changed. It is published for others; the product neither posts
/// nor observes it. The name is spelt so.
inline constexpr QLatin1String QRVDocumentCangedNotification("QRVDocumentChanged");

/// The application's controller and one of its windows: it signs in, loads the wheel and the sets, and shows
/// them. A document only in form: nothing is read from or written to disk, and the credentials live in
/// memory.
///
/// Start-up and sign-in are defined in TarvexDocument.cpp, the loading and showing of the data and the set
/// selector in TarvexDocument+Selector.cpp, sign-up in TarvexDocument+SignUp.cpp, the commands on sets in
/// TarvexDocument+Sets.cpp, printing in TarvexDocument+Printing.cpp, the other sheets in
/// TarvexDocument+Sheets.cpp, the window's making and closing in TarvexDocument+Window.cpp, what makes it a
/// document in TarvexDocument+Shell.cpp.
class TarvexDocument : public QObject, public WheelParent, public ComboBoxDataSource, public RenameAreasParent
{
    Q_OBJECT
public:
    static constexpr int areaCount = 8;

    /// An empty project and no window yet. The controller must outlive the document.
    explicit TarvexDocument(DocumentController &controller);
    ~TarvexDocument() override;

    /// The name of the layout that holds the window.
    QString windowNibName() const;
    /// Loads the window from its layout, connects the outlets and prepares it. Once per document.
    void makeWindow();
    /// Turns the percent labels and starts the delay before the sign-in sheet.
    void windowControllerDidLoadNib();
    QMainWindow *window() const { return m_window.get(); }

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
    /// Takes a click on a slice and opens the area's details; nothing happens while another sheet is up. The
    /// area may be empty.
    void showAreaDetails(const TVXAreaPtr &area, int ofIndex) override;
    /// The document of the application's main window, or null.
    TarvexDocument *currentDocument() const;

    /// The report of the selected set, whose goals are fetched for it and become those of the project on
    /// show; null without a selected set. The settings are not read and no error is ever told: goals that
    /// cannot be fetched are missing from the report, as the window's guidance says.
    std::shared_ptr<PrintOperation> printOperationWithSettings(const QVariantMap &settings,
                                                               QString *error = nullptr);

    int numberOfItemsInComboBox(const SourcedComboBox *comboBox) const override;
    QString comboBoxObjectValueForItemAtIndex(const SourcedComboBox *comboBox, int index) const override;
    std::shared_ptr<const void> comboBoxRecordAtIndex(const SourcedComboBox *comboBox,
                                                      int index) const override;
    /// The first set whose name is the very same string object, not an equal one; 0 where there is none.
    int comboBoxIndexOfItemWithStringValue(const SourcedComboBox *comboBox, const QString &string) const;

    /// @name Outlets and data
    /// The setters only set: nothing is connected, shown or loaded. Outlets are not owned.
    /// @{
    TarvexView *wheelView() const override;
    void setWheelView(TarvexView *wheelView);
    SourcedComboBox *listOfProjects() const;
    void setListOfProjects(SourcedComboBox *listOfProjects);
    SignInSheet *wndSignIn() const;
    void setWndSignIn(SignInSheet *wndSignIn);
    Sheet *wndSignUp() const;
    void setWndSignUp(Sheet *wndSignUp);
    Sheet *wndAreaDetails() const;
    Sheet *wndRenameAreas() const;
    void setWndRenameAreas(Sheet *wndRenameAreas);
    Sheet *wndNextGoals() const;
    void setWndNextGoals(Sheet *wndNextGoals);
    ProjectNameSheet *wndProjectName() const;
    void setWndProjectName(ProjectNameSheet *wndProjectName);
    /// The controls of wndProjectName; null before its first showing.
    QLineEdit *textProjectName() const;
    void setTextProjectName(QLineEdit *textProjectName);
    BusyIndicator *projectNameIndicator() const;
    void setProjectNameIndicator(BusyIndicator *projectNameIndicator);
    MessageLine *textSignInErrorMessage() const;
    void setTextSignInErrorMessage(MessageLine *textSignInErrorMessage);
    ElidedLabel *label1() const { return m_labels[0].data(); }
    void setLabel1(ElidedLabel *label) { m_labels[0] = label; }
    ElidedLabel *label2() const { return m_labels[1].data(); }
    void setLabel2(ElidedLabel *label) { m_labels[1] = label; }
    ElidedLabel *label3() const { return m_labels[2].data(); }
    void setLabel3(ElidedLabel *label) { m_labels[2] = label; }
    ElidedLabel *label4() const { return m_labels[3].data(); }
    void setLabel4(ElidedLabel *label) { m_labels[3] = label; }
    ElidedLabel *label5() const { return m_labels[4].data(); }
    void setLabel5(ElidedLabel *label) { m_labels[4] = label; }
    ElidedLabel *label6() const { return m_labels[5].data(); }
    void setLabel6(ElidedLabel *label) { m_labels[5] = label; }
    ElidedLabel *label7() const { return m_labels[6].data(); }
    void setLabel7(ElidedLabel *label) { m_labels[6] = label; }
    ElidedLabel *label8() const { return m_labels[7].data(); }
    void setLabel8(ElidedLabel *label) { m_labels[7] = label; }

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
    /// @}

    bool eventFilter(QObject *watched, QEvent *event) override;

public Q_SLOTS:
    /// The start-up timer's target: stops it and shows the sign-in sheet.
    void getUserNameAndPassword();
    void signIn();
    /// Closes the document.
    void cancel();
    /// Ends its sheets, hides the window and has the controller destroy the document.
    void close();
    /// Tries to save and says in words why that is impossible.
    void saveDocument();
    /// These open a page in the user's browser and do nothing else.
    void gotoWebSite();
    void gotoTwitter();
    void gotoFacebook();
    void showAbout();
    /// Shows the sign-in sheet again, with an empty message line.
    void signInAgain();

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
    /// Opens the set-name sheet with the current set's name; without a current set it does nothing.
    void editCurrentProject();
    /// Creates or renames on the service and fetches the sets anew. What the service refused shows up only as
    /// an unchanged list.
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

private:
    void connectOutlets();
    void connectActions();
    void makeSheetControllers();
    void makeSignUpSheet();
    bool mayRegister();
    void createAccount();
    bool mayOpenSheet() const;
    void makePrintOperation(const std::function<void(const std::shared_ptr<PrintOperation> &)> &next);
    void askForPrinter(const std::shared_ptr<PrintOperation> &operation, QWidget *window);
    void askForFile(const std::shared_ptr<PrintOperation> &operation, QWidget *window,
                    const QString &typedPath = {}, const QPageRanges &pages = {});
    void printOn(QPrinter &printer, const std::shared_ptr<PrintOperation> &operation, QWidget *window);
    void writePdf(const std::shared_ptr<PrintOperation> &operation, QWidget *window, const QString &path,
                  const QPageRanges &pages = {});
    void showSaved(const QString &path);
    void beginSheet(Sheet *sheet);
    TarvexDocument *documentToBorrowFrom() const;
    void loadSets(TVXSetsList &sets);
    /// Whether there are no sets on show because they could not be fetched.
    bool lacksSets() const;
    void createSet(const QString &name);
    void renameSet(const QString &name, qint64 idOfSets);
    void deleteSelectedSet();
    void showIncompleteAnswer();
    void appendWheelPieces();
    /// What the window says about its own state: the line at the bottom, the ring, the selector's
    /// placeholder.
    void showState();
    void enableCommands();
    void colourPlaceholder();
    void showSelectedSet();
    TVXSetsPtr selectedSet() const;
    std::shared_ptr<TVXSetsList> shownSets() const;

    DocumentController &m_controller;
    TVXProjectPtr m_project;
    QString m_loginUserName = QStringLiteral("");
    QString m_loginPassword = QStringLiteral("");
    std::weak_ptr<TVXSets> m_currentSet;
    bool m_isLoaded = false;
    bool m_hasSetsLoadFailed = false;
    bool m_isReportWithoutGoals = false; // since they could not be loaded
    PrintInfo m_printInfo;

    std::unique_ptr<QMainWindow> m_window;
    QPointer<QTimer> m_startGettingUserNameAndPassword;

    // Outlets, owned by the window; those of another document after a fallback to it.
    QPointer<ProjectNameSheet> m_wndProjectName;
    QPointer<AlertSheet> m_deleteAlert;
    QPointer<AlertSheet> m_saveAlert; // made when it is first needed
    QPointer<Sheet> m_wndAreaDetails;
    QPointer<AreaWindowController> m_areaController;
    QPointer<Sheet> m_wndRenameAreas;
    QPointer<RenameAreasWindowController> m_renameController;
    QPointer<Sheet> m_wndNextGoals;
    QPointer<RandomGoalWindowController> m_randomGoalController;
    QPointer<SignInSheet> m_wndSignIn;
    QPointer<Sheet> m_wndSignUp;
    QPointer<RegisterViewController> m_registerController;
    std::array<QPointer<ElidedLabel>, areaCount> m_labels;
    std::array<QPointer<RotatedLabel>, areaCount> m_percentLabels;
    QPointer<QLabel> m_labelMainPercent;
    QPointer<QLabel> m_labelMainPercentCaption;
    QPointer<QLabel> m_labelGuidance;
    QPointer<DialArea> m_dialArea;
    QPointer<TarvexView> m_wheelView;
    QPointer<SourcedComboBox> m_listOfProjects;
    QPointer<BusyIndicator> m_indicator;
    QPointer<QLineEdit> m_textUsername;
    QPointer<QLineEdit> m_textPassword;
    QPointer<MessageLine> m_textSignInErrorMessage;
};
