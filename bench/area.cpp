// The area sheet with many goals: opening it, changing a row in it, and the body of its save.
#include "AreaWindowController.h"
#include "Escaping.h"
#include "FormString.h"
#include "GoalTableModel.h"
#include "GoalTableView.h"
#include "RecordLists.h"
#include "Sheet.h"
#include "TarvexView.h"
#include "TVXAlert.h"
#include "TVXExchange.h"
#include "TVXManager.h"
#include "WindowServices.h"

#include <benchmark/benchmark.h>
#include <cstring>
#include <QApplication>

namespace {

QByteArray answerWith(int goals)
{
    QByteArray xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?><goals>";
    for (int i = 1; i <= goals; ++i)
        xml += "<goal><id>" + QByteArray::number(i) + "</id><name>Goal number " + QByteArray::number(i) +
               " of many{_d_} Do it well</name><priority>5</priority><checked>" + (i % 3 ? "n" : "y") +
               "</checked></goal>";
    return xml + "</goals>";
}

struct Answering : TVXExchange
{
    TVXAnswer post(const QByteArray &, TVXPurpose) override
    {
        return {.data = answer, .errorDescription = {}};
    }
    bool isBusy() const override { return false; }
    std::chrono::milliseconds deadline() const override { return {}; }
    QString address() const override { return {}; }
    QByteArray answer;
};

struct Silent : TVXAlert
{
    void showError(const QString &) override {}
};

struct OpenSheet : WindowServices
{
    explicit OpenSheet(int goals)
    {
        server.answer = answerWith(goals);
        project->areas()->push_back(std::make_shared<TVXArea>());
        project->sets()->push_back(std::make_shared<TVXSets>());
        wheel.setMainData(project);
        controller.buildContents();
        controller.setWheelView(&wheel);
        window.show();
        sheet.beginOn(&window);
        load();
        QApplication::processEvents();
    }
    ~OpenSheet() override { sheet.endSheet(); }

    void load()
    {
        controller.setIsAlreadyLoadedDatas(/*loaded=*/false);
        controller.windowDidBecomeKey();
    }

    TVXExchange &exchange() const override { return server; }
    TVXAlert &alert() const override { return silent; }
    bool isBusy() const override { return false; }
    void runAction(const std::function<void()> &action, const std::function<void()> &) override { action(); }
    void runWhenIdle(const std::function<void()> &action, const std::function<void()> &) override
    {
        action();
    }

    mutable Answering server;
    mutable Silent silent;
    TVXProjectPtr project = std::make_shared<TVXProject>();
    TarvexView wheel;
    QWidget window;
    Sheet sheet{&window};
    AreaWindowController controller{*this, &sheet};
};

void openArea(benchmark::State &state)
{
    OpenSheet open(/*goals=*/10'000);
    for (auto _ : state) {
        open.load();
        open.sheet.repaint();
    }
}

void readAndReset(benchmark::State &state)
{
    Answering server;
    server.answer = answerWith(/*goals=*/10'000);
    Silent silent;
    const auto goals = std::make_shared<TVXGoalList>();
    GoalTableModel model([&] { return goals; });
    GoalTableView table;
    table.setGoals(&model);
    table.resize(570, 300);
    table.show();
    QApplication::processEvents();
    for (auto _ : state) {
        TVXManager(server, silent)
            .getGoalsFormServeByUsingLogin({}, {}, /*forArea=*/1, /*forSets=*/1, *goals);
        model.reloadData();
        table.repaint();
    }
}

void changeARow(benchmark::State &state, int goals)
{
    OpenSheet open(goals);
    QAbstractItemModel *model = open.controller.tableViewTargets()->model();
    for (auto _ : state) {
        open.controller.addNewGoal();
        open.sheet.repaint();
        model->setData(model->index(model->rowCount() - 1, 0), {}, Qt::CheckStateRole);
        open.sheet.repaint();
        open.controller.removeSelectedGoal();
        open.sheet.repaint();
    }
}

TVXGoalList manyGoals()
{
    TVXGoalList goals;
    for (int i = 0; i < 10'000; ++i) {
        goals.push_back(std::make_shared<TVXGoal>());
        goals.back()->setNameOfGoal(QStringLiteral("Goal %1: do it well & soon").arg(i));
    }
    return goals;
}

QByteArray body(const TVXGoalList &goals)
{
    FormString form(QLatin1StringView("create-some-goals"));
    appendGoalRecords(form.open(QLatin1StringView("p4")), goals, /*setsId=*/7, /*areaId=*/3);
    return form.body();
}

void bodyOfSave(benchmark::State &state)
{
    const TVXGoalList goals = manyGoals();
    for (auto _ : state)
        benchmark::DoNotOptimize(body(goals));
}

void escapeAndCopy(benchmark::State &state)
{
    const TVXGoalList goals = manyGoals();
    const QByteArray bytes = body(goals);
    QByteArray copy(bytes.size(), '\0');
    for (auto _ : state) {
        for (const TVXGoalPtr &goal : goals)
            benchmark::DoNotOptimize(escapedForWire(goal->nameOfGoal()));
        std::memcpy(copy.data(), bytes.constData(), static_cast<std::size_t>(bytes.size()));
        benchmark::ClobberMemory();
    }
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::RegisterBenchmark("area/open-10000/ours", openArea);
    benchmark::RegisterBenchmark("area/open-10000/peer-read-and-reset", readAndReset);
    benchmark::RegisterBenchmark("area/change-a-row/10", changeARow, 10);
    benchmark::RegisterBenchmark("area/change-a-row/10000", changeARow, 10'000);
    benchmark::RegisterBenchmark("area/body-10000/ours", bodyOfSave);
    benchmark::RegisterBenchmark("area/body-10000/peer-escape-and-copy", escapeAndCopy);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
