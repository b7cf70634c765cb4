#pragma once

#include "ActionOutcome.h"
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
    /// The sheet owns the controller; the services must outlive it.
    AreaWindowController(WindowServices &services, Sheet *thisWindow);

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
    /// Whether the goals were asked for in this showing; false begins a new one, with saving off.
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

    /// @name Outlets for who fills the sheet by other means
    /// These only set. The second table is held for its owner; nothing here uses it.
    /// @{
    void setIdsForRemove(const std::vector<qint64> &ids) { m_idsForRemove = ids; }
    void setLabelAreaName(MnemonicLabel *label) { m_labelAreaName = label; }
    void setSliderOfArea(AreaValueSlider *slider) { m_sliderOfArea = slider; }
    void setTableViewTargets(GoalTableView *table) { m_tableViewTargets = table; }
    GoalTableView *allTableView() const { return m_allTableView; }
    void setAllTableView(GoalTableView *table) { m_allTableView = table; }
    void setDownloadIndicator(BusyIndicator *indicator) { m_downloadIndicator = indicator; }
    void setThisWindow(Sheet *window) { m_thisWindow = window; }
    /// @}

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

Q_SIGNALS:
    /// The area was saved, and the sheet is down.
    void actionEnded(const ActionOutcome &outcome);

private:
    /// What became of this showing's load.
    enum class Load {
        Waiting,
        NoSet,
        Good,
        Unread, // it came to its end without goals: nothing is there to be deleted, so saving is possible
        EndedEarly
    };

    TVXProjectPtr mainData() const;
    std::shared_ptr<TVXGoalList> goals() const;
    void connectControls(QPushButton *cancel);
    void load();
    void fetchGoals(const TVXArea &area, const TVXSets &set);
    void tryAgain();
    void loadEndedEarly();
    void showArea(const TVXArea &area);
    ActionOutcome save();
    /// @throws std::out_of_range without a set, as the two below.
    TVXWritten sendAll(const TVXArea &area);
    void storePercent() const;
    TVXSetsPtr chosenSet() const;
    void emptyAndClose();
    bool mayEdit() const { return m_load == Load::Good || m_load == Load::Unread; }
    QString areaName() const;
    void nameWindow();
    void showRating();
    QString stateText() const;
    void showState();

    WindowServices &m_services;
    Sheet *m_thisWindow;
    QPointer<TarvexView> m_wheelView;
    QString m_loginUserName = QStringLiteral("");
    QString m_loginPassword = QStringLiteral("");
    qint64 m_areaIndex = 0;
    qint64 m_setsIndex = 0;
    std::vector<qint64> m_idsForRemove;
    bool m_isAlreadyLoadedDatas = false;
    Load m_load = Load::Waiting;
    bool m_isAreaShown = false; // in this showing; what the user does with the slider from then on stays
    TVXGoalList m_addedUnread;  // by the user, to a table whose goals could not be read

    GoalTableModel *m_goalModel = nullptr;
    MnemonicLabel *m_labelAreaName = nullptr;
    ElidedLabel *m_labelSetName = nullptr;
    AreaValueSlider *m_sliderOfArea = nullptr;
    QLabel *m_labelRating = nullptr;
    GoalTableView *m_tableViewTargets = nullptr;
    GoalTableView *m_allTableView = nullptr;
    QLabel *m_labelState = nullptr;
    BusyIndicator *m_downloadIndicator = nullptr;
    BusyIndicator *m_areaIndicator = nullptr;
    QPushButton *m_addGoal = nullptr;
    QPushButton *m_removeGoal = nullptr;
    QPushButton *m_tryAgain = nullptr;
    QPushButton *m_keepText = nullptr;
    QPushButton *m_dropText = nullptr;
    QPushButton *m_save = nullptr;
};
