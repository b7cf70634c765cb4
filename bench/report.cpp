// The report as a PDF against a bare PDF writer that draws the same rows and nothing else, against drawing
// the whole report for every page, and by the number of goals; and how soon the preview shows its first page.

#include "PrintOperation.h"
#include "ReportPreview.h"

#include <benchmark/benchmark.h>
#include <QApplication>
#include <QIODevice>
#include <QPdfWriter>

using namespace Qt::StringLiterals;

namespace {
constexpr int areaCount = 8;
constexpr qreal pointsPerInch = 72;

/// Takes everything and keeps nothing.
class Nowhere : public QIODevice
{
protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *, qint64 size) override { return size; }
};

QPageLayout paper()
{
    return {QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF(18, 18, 18, 18)};
}

TVXProjectPtr projectWithGoals(int count)
{
    auto project = std::make_shared<TVXProject>();
    for (int area = 0; area < areaCount; ++area) {
        project->areas()->push_back(std::make_shared<TVXArea>());
        project->areas()->back()->setIdOfArea(area);
        project->areas()->back()->setName(u"Area %1"_s.arg(area));
    }
    for (int i = 0; i < count; ++i) {
        project->goals()->push_back(std::make_shared<TVXGoal>());
        TVXGoal &goal = *project->goals()->back();
        goal.setIdOfArea(i % areaCount);
        goal.setPriorityOfGoal(QList{0, 5, 9}[i % 3]);
        goal.setIsChecked(i % 2 == 0);
        goal.setNameOfGoal(u"Walk the old road to the sea and back, time %1"_s.arg(i));
    }
    return project;
}

std::shared_ptr<PrintOperation> operationWithGoals(int count)
{
    auto view = std::make_unique<TVXPrintView>();
    view->setProject(projectWithGoals(count));
    view->setTitleOfDocument(u"A year"_s);
    PrintInfo info;
    info.pageLayout = paper();
    return std::make_shared<PrintOperation>(std::move(view), info);
}

void countPerGoal(benchmark::State &state, int goals)
{
    state.counters["seconds_per_goal"] = benchmark::Counter(
        goals, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

/// Draws on a PDF that goes nowhere.
template<typename Draw>
void writePdf(const Draw &draw)
{
    Nowhere nowhere;
    nowhere.open(QIODevice::WriteOnly);
    QPdfWriter writer(&nowhere);
    writer.setPageLayout(paper());
    draw(writer);
}

void ours(benchmark::State &state, int goals)
{
    const auto operation = operationWithGoals(goals);
    for (auto _ : state)
        writePdf([&](QPdfWriter &writer) { operation->runOn(writer); });
    countPerGoal(state, goals);
}

/// The report's items page by page.
std::vector<ReportItems> pagesOf(PrintOperation &operation)
{
    std::vector<ReportItems> pages;
    const qint64 count = operation.layOutFor(paper()).length;
    for (qint64 page = 1; page <= count; ++page)
        pages.push_back(
            operation.view().layoutOfReport().itemsOnPage(operation.view().rectForPage(page), count));
    return pages;
}

// The least a program must do for these rows: pictures, lines and texts put where they are known to belong.
void drawBare(QPainter &painter, const ReportItems &items, const TVXPrintView &view, const QImage &off,
              const QImage &on)
{
    for (const ReportItem &item : items) {
        const QPointF baseline(item.rect.x(), item.rect.y() + 13);
        switch (item.kind) {
        case ReportItem::Kind::CheckboxOff:
        case ReportItem::Kind::CheckboxOn:
            painter.drawImage(item.rect, item.kind == ReportItem::Kind::CheckboxOn ? on : off);
            break;
        case ReportItem::Kind::GoalText:
            painter.setFont(view.attributesDefault().font());
            painter.drawText(baseline, item.text);
            break;
        case ReportItem::Kind::AreaText:
            painter.setFont(view.attributesAreas().font());
            painter.drawText(baseline, item.text);
            break;
        case ReportItem::Kind::Rule:
            painter.drawLine(item.rect.topLeft(), item.rect.topRight());
            break;
        default:
            break; // no title, no wheel
        }
    }
}

void bareWriter(benchmark::State &state, int goals)
{
    const auto operation = operationWithGoals(goals);
    const std::vector<ReportItems> pages = pagesOf(*operation);
    const qreal step = operation->view().pageHeight();
    for (auto _ : state) {
        writePdf([&](QPdfWriter &writer) {
            QPainter painter(&writer);
            painter.scale(writer.logicalDpiX() / pointsPerInch, writer.logicalDpiY() / pointsPerInch);
            const QImage off(u":/printing/checkbox_off.gif"_s);
            const QImage on(u":/printing/checkbox_on.gif"_s);
            for (const ReportItems &items : pages) {
                if (&items != &pages.front()) {
                    writer.newPage();
                    painter.translate(0, -step);
                }
                drawBare(painter, items, operation->view(), off, on);
            }
        });
    }
    countPerGoal(state, goals);
}

void wholeReportOnEveryPage(benchmark::State &state, int goals)
{
    const auto operation = operationWithGoals(goals);
    for (auto _ : state) {
        writePdf([&](QPdfWriter &writer) {
            const qint64 pages = operation->layOutFor(writer.pageLayout()).length;
            TVXPrintView &view = operation->view();
            QRectF whole = view.pageRect();
            whole.setTop(0);
            whole.setHeight(static_cast<qreal>(view.documentHeight()));
            const ReportItems all = view.layoutOfReport().itemsOnPage(whole, /*countPages=*/1);
            QPainter painter(&writer);
            painter.scale(writer.logicalDpiX() / pointsPerInch, writer.logicalDpiY() / pointsPerInch);
            for (qint64 page = 1; page <= pages; ++page) {
                const QRectF rect = view.rectForPage(page);
                painter.save();
                painter.setClipRect(QRectF(QPointF(), rect.size()));
                painter.translate(-rect.topLeft());
                view.drawItems(painter, all);
                painter.restore();
                if (page < pages)
                    writer.newPage();
            }
        });
    }
}

void layoutPass(benchmark::State &state, int goals)
{
    const TVXProjectPtr project = projectWithGoals(goals);
    for (auto _ : state)
        benchmark::DoNotOptimize(ReportLayout(*project, u"A year"_s, {29.3F, 20.0F, 17.9F}));
}

void firstPageOfPreview(benchmark::State &state, int goals)
{
    const auto operation = operationWithGoals(goals);
    ReportPreview preview(operation);
    preview.resize(760, 820);
    operation->view().layoutOfReport();
    for (auto _ : state)
        benchmark::DoNotOptimize(preview.grab());
}
} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const auto add = [](const std::string &name, auto run, int goals) {
        return benchmark::RegisterBenchmark(name.c_str(), run, goals)->Unit(benchmark::kMillisecond);
    };
    for (const int goals : {1'000, 10'000}) {
        const std::string size = std::to_string(goals);
        add("report/pdf-" + size + "/ours", ours, goals);
        add("report/pdf-" + size + "/peer-bare-writer", bareWriter, goals);
    }
    add("report/pdf-1000/peer-whole-on-every-page", wholeReportOnEveryPage, /*goals=*/1'000)->Repetitions(3);
    add("report/pdf-100000/ours", ours, /*goals=*/100'000)->Repetitions(3)->Iterations(1);
    add("report/pdf-100000/peer-bare-writer", bareWriter, /*goals=*/100'000)->Repetitions(3)->Iterations(1);
    for (const int goals : {1'000, 100'000}) {
        const std::string size = std::to_string(goals);
        add("report/layout-" + size, layoutPass, goals);
        add("report/first-page-" + size, firstPageOfPreview, goals);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
