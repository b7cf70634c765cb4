#pragma once

#include "TVXProject.h"

#include <array>
#include <QObject>

class BusyIndicator;
class QLabel;
class QLineEdit;
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

    /// Neither is owned; the services must outlive the controller, and it must not outlive the sheet.
    RenameAreasWindowController(WindowServices &services, Sheet *myWindow);

    /// Fills the sheet's window, once; the fields exist from then on.
    void buildContents();

    Sheet *myWindow() const { return m_myWindow; }
    QLineEdit *textName1() const { return m_fields[0].textName; }
    QLineEdit *textName2() const { return m_fields[1].textName; }
    QLineEdit *textName3() const { return m_fields[2].textName; }
    QLineEdit *textName4() const { return m_fields[3].textName; }
    QLineEdit *textName5() const { return m_fields[4].textName; }
    QLineEdit *textName6() const { return m_fields[5].textName; }
    QLineEdit *textName7() const { return m_fields[6].textName; }
    QLineEdit *textName8() const { return m_fields[7].textName; }
    BusyIndicator *uploadIndicator() const { return m_uploadIndicator; }

    const TVXProjectPtr &project() const { return m_project; }
    void setProject(const TVXProjectPtr &project) { m_project = project; }

    /// The document, which is told after saving; not owned. These are not the object's parent in the
    /// toolkit's sense.
    /// Told when names have changed. It must outlive this or be unset.
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

private:
    struct Field
    {
        QLineEdit *textName = nullptr;
        QString filledIn; // the area's own name,
        QString shown;    // and what the field made of it
    };

    void fillFields();
    void nameAreasAsTyped();
    void saveNames();
    void showAreasOnWindow();
    void showIncompleteAnswer();
    std::size_t areaCount() const;

    WindowServices &m_services;
    Sheet *const m_myWindow;
    TVXProjectPtr m_project;
    RenameAreasParent *m_parent = nullptr;
    QString m_loginUserName = QStringLiteral("");
    QString m_loginPassword = QStringLiteral("");
    bool m_isAlreadyLoadedDatas = false;

    std::array<Field, fieldCount> m_fields;
    QLabel *m_labelHint = nullptr;
    BusyIndicator *m_uploadIndicator = nullptr;
    QPushButton *m_save = nullptr;
};
