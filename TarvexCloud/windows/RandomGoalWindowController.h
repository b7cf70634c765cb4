#pragma once

#include "ActionOutcome.h"
#include "TVXProject.h"

#include <chrono>
#include <functional>
#include <optional>
#include <QObject>
#include <QPointer>

class BusyIndicator;
class QLabel;
class QPushButton;
class Sheet;
class SliceMark;
class TarvexView;
class WindowServices;
class WrappedLabel;

/// The random-goal sheet: one undone goal of the current set, picked by the service, to be marked done or
/// passed over for another.
///
/// The document sets the properties before each showing. Everything it hands over is shared with it: marking
/// a goal done stores the area's new percentage in the set at once, and the document hears of it when the
/// sheet closes.
class RandomGoalWindowController : public QObject
{
    Q_OBJECT
public:
    /// The sheet owns the controller; the services must outlive it.
    RandomGoalWindowController(WindowServices &services, Sheet *myWindow);

    /// Fills the sheet's window, once; the labels exist from then on.
    void buildContents();

    Sheet *myWindow() const { return m_myWindow; }
    WrappedLabel *labelArea() const { return m_labelArea; }
    WrappedLabel *labelGoal() const { return m_labelGoal; }
    BusyIndicator *progress() const { return m_progress; }

    /// @name Outlets for who fills the sheet by other means
    /// These only set.
    /// @{
    void setMyWindow(Sheet *window) { m_myWindow = window; }
    void setLabelArea(WrappedLabel *label) { m_labelArea = label; }
    void setLabelGoal(WrappedLabel *label) { m_labelGoal = label; }
    void setProgress(BusyIndicator *indicator) { m_progress = indicator; }
    /// @}

    /// The goal on show. Empty when the service had none; kept from showing to showing otherwise.
    const TVXGoalPtr &currentGoal() const { return m_currentGoal; }
    void setCurrentGoal(const TVXGoalPtr &goal) { m_currentGoal = goal; }

    const TVXProjectPtr &currentProject() const { return m_currentProject; }
    void setCurrentProject(const TVXProjectPtr &project) { m_currentProject = project; }

    /// The set whose goals are drawn from, and whose percentages follow.
    const TVXSetsPtr &currentSet() const { return m_currentSet; }
    void setCurrentSet(const TVXSetsPtr &set);

    /// Not owned. Its project's areas name the goal's area; its parent is told when the sheet closes.
    TarvexView *wheelView() const;
    void setWheelView(TarvexView *view);

    const QString &loginUserName() const { return m_loginUserName; }
    void setLoginUserName(const QString &name) { m_loginUserName = name; }
    const QString &loginPassword() const { return m_loginPassword; }
    void setLoginPassword(const QString &password) { m_loginPassword = password; }

    /// Whether a goal was fetched in this showing; false begins a new one.
    bool isAlreadyLoaded() const { return m_isAlreadyLoaded; }
    void setIsAlreadyLoaded(bool loaded);

public Q_SLOTS:
    /// The sheet has its contents: no goal was fetched yet.
    void windowDidLoad();
    /// Fetches the first goal of the showing as soon as nothing else runs, unless the sheet is down by then.
    void windowDidBecomeKey();
    void nextGoal();
    /// Marks the current goal done, then fetches another. Without a current goal the service is asked to mark
    /// the goal 0, which it does not have.
    void done();
    void closeWindow();

Q_SIGNALS:
    /// A goal was sent to be marked done. The sheet may stay up.
    void actionEnded(const ActionOutcome &outcome);

private:
    void runBusy(const QString &doing, std::chrono::milliseconds atMost,
                 const std::function<void()> &requests);
    void fetchRandomGoal();
    TVXWritten markCurrentGoalDone();
    void tickInProject();
    QString hint() const;
    void showRandomGoal();
    /// Greys, hides and explains according to what there is to show.
    void showState();
    void sayState() const;
    void showIncompleteAnswer();
    bool hasGoal() const;

    WindowServices &m_services;
    Sheet *m_myWindow;
    TVXProjectPtr m_currentProject;
    TVXSetsPtr m_currentSet;
    TVXGoalPtr m_currentGoal;
    QPointer<TarvexView> m_wheelView;
    QString m_loginUserName = QStringLiteral("");
    QString m_loginPassword = QStringLiteral("");
    bool m_isAlreadyLoaded = false;

    bool m_isWaiting = true;                  // for the first goal of the showing
    bool m_wasAreaNamed = false;              // in this showing
    QString m_whyNoAnswer;                    // to the latest request for a goal; null after an answer
    std::optional<std::size_t> m_indexOfArea; // of the goal on show

    QLabel *m_labelSet = nullptr;
    SliceMark *m_sliceMark = nullptr;
    WrappedLabel *m_labelArea = nullptr;
    WrappedLabel *m_labelGoal = nullptr;
    QLabel *m_labelHint = nullptr;
    BusyIndicator *m_progress = nullptr;
    QPushButton *m_done = nullptr;
};
