#include "WheelOnScreen.h"

class TarvexViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void releasingTheLeftButtonReportsTheSliceUnderIt()
    {
        WheelOnScreen wheel;
        for (const QPoint &point : {QPoint(100, 10), QPoint(100, -10), QPoint(10, 100), QPoint(-10, 100),
                                    QPoint(-209, 1), QPoint(211, 0), QPoint(-200, -195)})
            wheel.click(point);
        QCOMPARE(wheel.reports, QStringLiteral("Area 1/1 Area 2/2 Area 0/0 Area 7/7 Area 6/6 "));
        wheel.reports.clear();
        QTest::mouseClick(&wheel, Qt::RightButton, {}, wheel.at(100, 10));
        QTest::mousePress(&wheel, Qt::LeftButton, {}, wheel.at(100, 10));
        QCOMPARE(wheel.reports, QString());
        QTest::mouseRelease(&wheel, Qt::LeftButton, {}, wheel.at(100, -10));
        QCOMPARE(wheel.reports, QStringLiteral("Area 2/2 "));
    }

    void sharedPointsGoToTheLowestSliceThatHasThem()
    {
        WheelOnScreen wheel;
        QString expected;
        for (const QPoint &shared :
             {QPoint(0, 0), QPoint(0, 90), QPoint(90, 0), QPoint(0, -90), QPoint(-90, 0)}) {
            std::size_t lowest = 0;
            while (!wheel.pieces->at(lowest)->contains(QPointF(250, 215) + shared))
                ++lowest;
            expected += QStringLiteral("Area %1/%1 ").arg(lowest);
            wheel.click(shared);
        }
        QCOMPARE(wheel.reports, expected);
    }

    void whateverIsMissingIsSkipped()
    {
        WheelOnScreen wheel(/*pieceCount=*/5);
        wheel.project->areas()->resize(2);
        wheel.display();
        wheel.click({-10, 100});
        wheel.click({10, -100});
        wheel.setMainData(nullptr);
        wheel.click({100, 10});
        wheel.setPiecesOfWheel(nullptr);
        wheel.display();
        wheel.click({100, 10});
        QCOMPARE(wheel.reports, QStringLiteral("none/3 none/1 "));
    }

    void nothingIsHitBeforeItIsDrawn()
    {
        WheelOnScreen wheel;
        wheel.pieces->front() = std::make_shared<WheelPiece>();
        wheel.click({10, 100});
        QCOMPARE(wheel.reports, QString());
        wheel.display();
        wheel.click({10, 100});
        QCOMPARE(wheel.reports, QStringLiteral("Area 0/0 "));
    }

    void everyDrawOnScreenAddsACopyToTheFirstEightPieces()
    {
        WheelOnScreen wheel(/*pieceCount=*/16);
        const qint64 drawn = wheel.pieces->front()->copies();
        for (int draw = 0; draw < 10; ++draw)
            wheel.display();
        const QImage grabbed = wheel.grab().toImage(); // off screen: nothing is drawn
        QImage plain(grabbed);
        plain.fill(wheel.palette().window().color());
        QCOMPARE(grabbed, plain);
        for (std::size_t piece = 0; piece < 16; ++piece) {
            QCOMPARE(wheel.pieces->at(piece)->copies(), piece < 8 ? drawn + 10 : 0);
            QCOMPARE(wheel.pieces->at(piece)->outlines().size(), std::size_t(piece < 8));
        }
    }

    void paleSectorReachesAsFarAsTheValue_data()
    {
        QTest::addColumn<qint32>("value");
        QTest::addColumn<QString>("picture"); // 30, 60, 150 and 225 from the centre, in slices 3 and 7
        QTest::newRow("smallest sector") << 0 << QStringLiteral("33307770");
        QTest::newRow("within the slice") << 5 << QStringLiteral("3330PP70");
        QTest::newRow("full slice") << 9 << QStringLiteral("3330PPP0");
        QTest::newRow("past the rim") << 1000 << QStringLiteral("3330PPPP");
        QTest::newRow("opposite side") << -5 << QStringLiteral("PP307770");
        QTest::newRow("largest") << 2147483647 << QStringLiteral("PPPP7770");
    }
    void paleSectorReachesAsFarAsTheValue()
    {
        QFETCH(qint32, value);
        WheelOnScreen wheel;
        wheel.setPalette(QPalette(Qt::darkBlue));
        for (const TVXAreaPtr &area : *wheel.project->areas())
            area->setValueOfArea(area == wheel.project->areas()->back() ? value : 0);
        wheel.display();

        QString picture;
        for (const int distance : {-30, -60, -150, -225, 30, 60, 150, 225}) {
            const bool beyond = std::abs(distance) > 210;
            const QChar name = beyond ? u'0' : distance < 0 ? u'3' : u'7';
            const QColor bare =
                beyond ? wheel.palette().window().color() : wheel.colors()[distance < 0 ? 3 : 7];
            const QRgb seen = wheel.screenshot().pixel(wheel.at(-distance * 4 / 10, distance * 9 / 10));
            const int pale = qRound(0.7 * 255 + 0.3 * bare.green());
            picture += seen == bare.rgb() ? name : std::abs(qGreen(seen) - pale) < 3 ? u'P' : u'?';
        }
        QTEST(picture, "picture");
    }
};

QTEST_MAIN(TarvexViewTest)
#include "TarvexViewTest.moc"
