#pragma once

#include "ActionOutcome.h"
#include "OneLineEdit.h"
#include "TVXProject.h"

#include <array>
#include <optional>
#include <QObject>

class BusyIndicator;
class QLabel;
class QPushButton;
class Sheet;
class TarvexView;
class WindowServices;

/// What the rename-areas sheet asks of the document behind it.
class RenameAreasParent
{
public:
    virtual ~RenameAreasParent() = default;

    /// The areas have changed; show their names.
    virtual void setNamesForAreasOnWindow() = 0;
    /// The wheel that draws them; may be null.
    virtual TarvexView *wheelView() const = 0;
};

/// The rename-areas sheet: a field for each of the eight areas.
///
/// The document sets the properties before each showing. Saving replaces the project's areas by what the
/// service holds afterwards, so that names which it refused are seen to be the old ones.
class RenameAreasWindowController : public QObject
{
    Q_OBJECT
public:
    static constexpr std::size_t fieldCount = 8;

    /// The sheet owns the controller; the services must outlive it.
    RenameAreasWindowController(WindowServices &services, Sheet *myWindow);

    /// Fills the sheet's window, once; the fields exist from then on.
    void buildContents();

    Sheet *myWindow() const { return m_myWindow; }
    OneLineEdit *textName1() const { return m_textNames[0]; }
    OneLineEdit *textName2() const { return m_textNames[1]; }
    OneLineEdit *textName3() const { return m_textNames[2]; }
    OneLineEdit *textName4() const { return m_textNames[3]; }
    OneLineEdit *textName5() const { return m_textNames[4]; }
    OneLineEdit *textName6() const { return m_textNames[5]; }
    OneLineEdit *textName7() const { return m_textNames[6]; }
    OneLineEdit *textName8() const { return m_textNames[7]; }
    BusyIndicator *uploadIndicator() const { return m_uploadIndicator; }

    /// @name Outlets for who fills the sheet by other means
    /// These only set.
    /// @{
    void setMyWindow(Sheet *window) { m_myWindow = window; }
    void setTextName1(OneLineEdit *field) { m_textNames[0] = field; }
    void setTextName2(OneLineEdit *field) { m_textNames[1] = field; }
    void setTextName3(OneLineEdit *field) { m_textNames[2] = field; }
    void setTextName4(OneLineEdit *field) { m_textNames[3] = field; }
    void setTextName5(OneLineEdit *field) { m_textNames[4] = field; }
    void setTextName6(OneLineEdit *field) { m_textNames[5] = field; }
    void setTextName7(OneLineEdit *field) { m_textNames[6] = field; }
    void setTextName8(OneLineEdit *field) { m_textNames[7] = field; }
    void setUploadIndicator(BusyIndicator *indicator) { m_uploadIndicator = indicator; }
    /// @}

    const TVXProjectPtr &project() const { return m_project; }
    void setProject(const TVXProjectPtr &project) { m_project = project; }

    /// The document, which is told when the names have been saved. Not owned: it must outlive the controller
    /// or be unset. It is not the object's parent in the toolkit's sense, which is the sheet.
    RenameAreasParent *parent() const { return m_parent; }
    void setParent(RenameAreasParent *parent) { m_parent = parent; }

    const QString &loginUserName() const { return m_loginUserName; }
    void setLoginUserName(const QString &name) { m_loginUserName = name; }
    const QString &loginPassword() const { return m_loginPassword; }
    void setLoginPassword(const QString &password) { m_loginPassword = password; }

    /// Whether the fields hold this showing's names; false begins a new one, and there is no saving before
    /// they do.
    bool isAlreadyLoadedDatas() const { return m_isAlreadyLoadedDatas; }
    void setIsAlreadyLoadedDatas(bool loaded);

public Q_SLOTS:
    /// Fills the fields, once per showing. Sends nothing.
    void windowDidBecomeKey();
    void clickSaveAndClose();
    void clickCancel();

Q_SIGNALS:
    /// The names were sent and the areas fetched anew, and the sheet is down.
    void actionEnded(const ActionOutcome &outcome);

private:
    void fillFields();
    void nameAreasAsTyped();
    /// Nothing if there is no project, so that nothing was sent.
    std::optional<ActionOutcome> saveNames();
    void showAreasOnWindow();
    void showIncompleteAnswer();
    std::size_t areaCount() const;

    WindowServices &m_services;
    Sheet *m_myWindow;
    TVXProjectPtr m_project;
    RenameAreasParent *m_parent = nullptr;
    QString m_loginUserName = QStringLiteral("");
    QString m_loginPassword = QStringLiteral("");
    bool m_isAlreadyLoadedDatas = false;

    std::array<OneLineEdit *, fieldCount> m_textNames = {};
    QLabel *m_labelHint = nullptr;
    BusyIndicator *m_uploadIndicator = nullptr;
    QPushButton *m_save = nullptr;
};
