// A frame of the wheel against the same slices and sectors painted by a bare QPainter, and what a wheel that
// has been drawn very often costs against a new one.

#include "TarvexView.h"

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <QApplication>
#include <QPainter>

namespace {
constexpr int side = 430;

struct Wheel
{
    explicit Wheel(int redraws)
    {
        for (int index = 0; index < WheelGeometry::sliceCount; ++index) {
            project->areas()->push_back(std::make_shared<TVXArea>());
            project->areas()->back()->setValueOfArea(index + 1);
            pieces->push_back(std::make_shared<WheelPiece>());
        }
        view.setMainData(project);
        view.setPiecesOfWheel(pieces);
        view.resize(side, side);
        view.show();
        QApplication::processEvents(); // until the window is exposed, nothing reaches the screen
        // Drawn in full each time, but seen through one pixel only, to be done within seconds.
        for (int draw = 1; draw < redraws; ++draw)
            view.repaint(0, 0, 1, 1);
    }

    TVXProjectPtr project = std::make_shared<TVXProject>();
    std::shared_ptr<WheelPieceList> pieces = std::make_shared<WheelPieceList>();
    TarvexView view;
};

// What the wheel must at least do for a frame, with nothing round it.
class BarePainter : public QWidget
{
public:
    BarePainter() { resize(side, side); }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(0, height());
        painter.scale(1, -1);
        const QPointF centre(side / 2.0, side / 2.0);
        for (int index = 0; index < WheelGeometry::sliceCount; ++index) {
            const QPainterPath slice = WheelGeometry::sliceOutline(centre, index);
            painter.fillPath(slice, WheelGeometry::colors()[static_cast<std::size_t>(index)]);
            painter.strokePath(slice, QPen(Qt::white, WheelGeometry::outlineWidth));
            painter.fillPath(WheelGeometry::valueSector(centre, index, index + 1, /*reach=*/side),
                             WheelGeometry::valueColor());
        }
    }
};

void frame(benchmark::State &state, QWidget &widget)
{
    for (auto _ : state)
        widget.repaint();
}

void frameOfWheel(benchmark::State &state, Wheel &wheel)
{
    const auto copies = wheel.pieces->front()->copies();
    const std::size_t before = mallinfo2().uordblks;
    frame(state, wheel.view);
    const auto drawn = static_cast<double>(wheel.pieces->front()->copies() - copies);
    if (drawn == 0)
        state.SkipWithError("nothing was drawn on the screen");
    state.counters["bytes-per-redraw"] =
        (static_cast<double>(mallinfo2().uordblks) - static_cast<double>(before)) / drawn;
}

void frameOfPeer(benchmark::State &state)
{
    BarePainter peer;
    peer.show();
    QApplication::processEvents();
    frame(state, peer);
}

void hit(benchmark::State &state, const Wheel &wheel)
{
    const QPointF lastSlice(side / 2.0 - 10, side / 2.0 - 100);
    for (auto _ : state)
        benchmark::DoNotOptimize(wheel.view.pieceAt(lastSlice));
}
} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    Wheel fresh(/*redraws=*/1);
    Wheel old(/*redraws=*/100000);
    const auto add = [](const char *name, auto run) { benchmark::RegisterBenchmark(name, run); };
    add("wheel-frame/ours", [&](benchmark::State &state) { frameOfWheel(state, fresh); });
    add("wheel-frame/peer", frameOfPeer);
    add("wheel-frame/redraw-100000", [&](benchmark::State &state) { frameOfWheel(state, old); });
    add("wheel-hit/redraw-1", [&](benchmark::State &state) { hit(state, fresh); });
    add("wheel-hit/redraw-100000", [&](benchmark::State &state) { hit(state, old); });
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
