#pragma once

#include "TarvexView.h"

#include <QtTest>

/// A wheel with areas "Area 0" to "Area 7", each worth its index, in a window on the screen. It writes down
/// what the wheel reports to its parent and announces to assistive tools.
class WheelOnScreen : public TarvexView, public WheelParent
{
public:
    explicit WheelOnScreen(std::size_t pieceCount = WheelGeometry::sliceCount)
    {
        for (int index = 0; index < WheelGeometry::sliceCount; ++index) {
            project->areas()->push_back(std::make_shared<TVXArea>());
            project->areas()->back()->setName(QStringLiteral("Area %1").arg(index));
            project->areas()->back()->setValueOfArea(index);
        }
        while (pieces->size() < pieceCount)
            pieces->push_back(std::make_shared<WheelPiece>());
        setMainData(project);
        setPiecesOfWheel(pieces);
        setTheParent(this);
        resize(501, 431);
        show();
        if (!QTest::qWaitForWindowActive(this))
            qFatal("the wheel does not appear");
    }

    /// Right and up of the centre, as the wheel's own coordinates count.
    QPoint at(int right, int up) const { return {width() / 2 + right, height() - height() / 2 - up}; }
    void click(const QPoint &point) { QTest::mouseClick(this, Qt::LeftButton, {}, at(point.x(), point.y())); }
    QImage screenshot() const { return screen()->grabWindow(winId()).toImage(); }

    void showAreaDetails(const TVXAreaPtr &area, int ofIndex) override
    {
        reports += QStringLiteral("%1/%2 ").arg(area ? area->name() : QStringLiteral("none")).arg(ofIndex);
    }
    void updatePercentValues() override {}

    TVXProjectPtr project = std::make_shared<TVXProject>();
    std::shared_ptr<WheelPieceList> pieces = std::make_shared<WheelPieceList>();
    QString reports;
    QList<std::pair<QAccessible::Event, int>> announcements;

protected:
    void announce(QAccessibleEvent &event) override
    {
        announcements.emplace_back(event.type(), event.child());
    }
};
