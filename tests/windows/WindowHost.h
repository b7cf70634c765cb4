#pragma once

#include "CurlExchange.h"
#include "InputHold.h"
#include "LoopbackService.h"
#include "ServiceFakes.h"
#include "Sheet.h"
#include "TarvexView.h"
#include "WindowServices.h"

#include <QPushButton>
#include <QScopedValueRollback>
#include <QTest>
#include <stdexcept>

/// Drops input during a request, as the application does.
class HoldingWait : public TVXRequestWait
{
public:
    void requestStarted() override { m_hold.begin(); }
    void turn() override { m_hold.turn(); }
    void requestEnded() override { m_hold.end(); }

private:
    InputHold m_hold;
};

/// What stands behind a sheet, in place of a document: a scripted service, a signed-in account with its
/// wheel, a window and a sheet on it. Alerts are written down, not shown.
class WindowHost : public WindowServices, public WheelParent
{
public:
    WindowHost()
    {
        wheelView.setMainData(project);
        wheelView.setTheParent(this);
        mainWindow.show();
    }

    TVXExchange &exchange() const override { return m_exchange; }
    TVXAlert &alert() const override { return recordedAlert; }
    bool isBusy() const override { return m_actionRunning || m_exchange.isBusy(); }

    void runAction(const std::function<void()> &action, const std::function<void()> &endedEarly) override
    {
        if (isBusy())
            return;
        const QScopedValueRollback running(m_actionRunning, true);
        try {
            action();
        } catch (const std::out_of_range &) {
            ++endedEarlyCount;
            endedEarly();
        }
    }

    void runWhenIdle(const std::function<void()> &action, const std::function<void()> &endedEarly) override
    {
        QTimer::singleShot(0, &sheet, [this, action, endedEarly] {
            if (isBusy())
                runWhenIdle(action, endedEarly);
            else
                runAction(action, endedEarly);
        });
    }

    void showAreaDetails(const TVXAreaPtr &, int) override {}
    void updatePercentValues() override { ++percentUpdates; }

    /// Areas with ids 1, 2, ... and the value 4.
    void addAreas(const QStringList &names)
    {
        for (const QString &name : names) {
            auto area = std::make_shared<TVXArea>();
            area->setIdOfArea(static_cast<qint64>(project->areas()->size()) + 1);
            area->setName(name);
            area->setValueOfArea(4);
            project->areas()->push_back(area);
        }
    }

    /// A set whose eight percents are empty.
    TVXSetsPtr addSet(qint64 id, const QString &name)
    {
        auto set = std::make_shared<TVXSets>();
        set->setIdOfSets(id);
        set->setName(name);
        project->sets()->push_back(set);
        return set;
    }

    /// The control of that object name, which is its outlet's.
    template<class Control>
    Control *control(const char *name) const
    {
        auto *found = sheet.findChild<Control *>(QString::fromLatin1(name));
        if (!found)
            qFatal("no %s in the sheet", name);
        return found;
    }

    QPushButton *button(const char *text) const
    {
        const auto buttons = sheet.findChildren<QPushButton *>();
        for (QPushButton *found : buttons)
            if (found->text().remove(u'&') == QLatin1String(text))
                return found;
        qFatal("no button %s in the sheet", text);
    }

    mutable RecordingAlert recordedAlert;
    LoopbackService service;
    TVXProjectPtr project = std::make_shared<TVXProject>();
    QWidget mainWindow;
    TarvexView wheelView;
    Sheet sheet{&mainWindow};
    int percentUpdates = 0;
    int endedEarlyCount = 0;

private:
    HoldingWait m_wait;
    mutable CurlExchange m_exchange{service.url(), std::chrono::seconds(20), m_wait};
    bool m_actionRunning = false;
};

/// An answer of the service: records of `fields`, one row of texts for each record.
inline QByteArray xmlAnswer(const QByteArrayList &fields, const QList<QByteArrayList> &rows)
{
    QByteArray xml = "<answer>";
    for (const QByteArrayList &row : rows)
        for (qsizetype i = 0; i < row.size(); ++i)
            xml += '<' + fields[i] + '>' + row[i] + "</" + fields[i] + '>';
    return xml + "</answer>";
}

/// p2 and p3 of the login "ann" with the password "secret".
inline const QByteArray annsDigests =
    "&p2=7E0D7F8A5D96C24FFCC840F31BCE72B2&p3=5EBE2294ECD0E0F08EAB7690D2A6EE69";
