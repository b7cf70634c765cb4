#pragma once

#include "TVXProject.h"

#include <memory>
#include <QObject>
#include <QPointer>

class AreaValueSlider;
class BusyIndicator;
class ElidedLabel;
class GoalTableModel;
class GoalTableView;
class MnemonicLabel;
class QLabel;
class QPushButton;
class Sheet;
class TarvexView;
class WindowServices;

/// The area details sheet: one area's value and its goals in one set, edited in place and saved as a whole.
///
/// The document sets the properties before each showing and the sheet loads when it first becomes the active
/// window. The goals on show are the project's own list; it is empty again once the sheet is down.
class AreaWindowController : public QObject
{
    Q_OBJECT
public:
    /// Neither is owned; the services must outlive the controller, and it must not outlive the sheet.
    AreaWindowController(WindowServices &services, Sheet *thisWindow);
    ~AreaWindowController() override;

    /// Fills the sheet's window, once; its controls exist from then on.
    void buildContents();

    TarvexView *wheelView() const;
    /// Not owned. Gives the project and, as its parent, the document.
    void setWheelView(TarvexView *view);
    const QString &loginUserName() const { return m_loginUserName; }
    void setLoginUserName(const QString &name) { m_loginUserName = name; }
    const QString &loginPassword() const { return m_loginPassword; }
    void setLoginPassword(const QString &password) { m_loginPassword = password; }
    /// Where the area and the set stand in the project's lists.
    qint64 areaIndex() const { return m_areaIndex; }
    void setAreaIndex(qint64 index) { m_areaIndex = index; }
    qint64 setsIndex() const { return m_setsIndex; }
    void setSetsIndex(qint64 index) { m_setsIndex = index; }
    /// Whether the goals were fetched in this showing; false begins a new one, with saving off.
    bool isAlreadyLoadedDatas() const { return m_isAlreadyLoadedDatas; }
    void setIsAlreadyLoadedDatas(bool loaded);

    /// The goals that the service held at the last load, as 32-bit numbers: what a save deletes.
    const std::vector<qint64> &idsForRemove() const { return m_idsForRemove; }
    /// Shows the area's name; its tag is the area's index between load and save.
    MnemonicLabel *labelAreaName() const { return m_labelAreaName; }
    AreaValueSlider *sliderOfArea() const { return m_sliderOfArea; }
    GoalTableView *tableViewTargets() const { return m_tableViewTargets; }
    BusyIndicator *downloadIndicator() const { return m_downloadIndicator; }
    Sheet *thisWindow() const { return m_thisWindow; }

public Q_SLOTS:
    /// Loads once per showing, as soon as nothing else runs, unless the sheet is down by then.
    void windowDidBecomeKey();
    /// Writes the value and all goals, deletes the old goals, and closes. What the service makes of it is not
    /// looked at.
    void closeAndSavedetailsWindow();
    /// Closes and writes nothing.
    void closeAreaDetailsWindow();
    void addNewGoal();
    /// Without a selected row the removal fails and the list stays as it is.
    void removeSelectedGoal();

private:
    TVXProjectPtr mainData() const;
    std::shared_ptr<TVXGoalList> goals() const;
    void connectControls(QPushButton *cancel);
    void load();
    void loadEndedEarly();
    void showArea(const TVXAreaPtr &area);
    void save();
    void storePercent(TVXSets &set) const;
    void emptyAndClose();
    void showRating();
    QString stateText() const;
    void showState();

    WindowServices &m_services;
    Sheet *const m_thisWindow;
    QPointer<TarvexView> m_wheelView;
    QString m_loginUserName = QStringLiteral("");
    QString m_loginPassword = QStringLiteral("");
    qint64 m_areaIndex = 0;
    qint64 m_setsIndex = 0;
    std::vector<qint64> m_idsForRemove;
    bool m_isAlreadyLoadedDatas = false;
    bool m_isLoadedWell = false;
    bool m_hasLoadFailed = false;

    GoalTableModel *m_goalModel = nullptr;
    MnemonicLabel *m_labelAreaName = nullptr;
    ElidedLabel *m_labelSetName = nullptr;
    AreaValueSlider *m_sliderOfArea = nullptr;
    QLabel *m_labelRating = nullptr;
    GoalTableView *m_tableViewTargets = nullptr;
    QLabel *m_labelState = nullptr;
    BusyIndicator *m_downloadIndicator = nullptr;
    BusyIndicator *m_areaIndicator = nullptr;
    QPushButton *m_addGoal = nullptr;
    QPushButton *m_removeGoal = nullptr;
    QPushButton *m_save = nullptr;
};
