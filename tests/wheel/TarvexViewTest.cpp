#include "TarvexView.h"
#include "ElidedLabel.h"
#include "Samples.h"
#include "SideTip.h"
#include "SliceWords.h"

#include <QToolTip>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

/// A wheel with areas "a" to "h" in a window on the screen. It writes down what it reports to its parent, an
/// area and its index, and what it announces to assistive tools.
struct WheelOnScreen : TarvexView, WheelParent
{
    explicit WheelOnScreen(std::size_t pieceCount = WheelGeometry::sliceCount)
    {
        for (const QChar name : u"abcdefgh"_s) {
            project->areas()->push_back(std::make_shared<TVXArea>());
            project->areas()->back()->setName(name);
        }
        while (pieces->size() < pieceCount)
            pieces->push_back(std::make_shared<WheelPiece>());
        setMainData(project);
        setPiecesOfWheel(pieces);
        setTheParent(this);
        setGeometry(40, 30, 501, 431);
        show();
        if (!QTest::qWaitForWindowActive(this))
            qFatal("the wheel does not appear");
    }

    /// The pixel that far from the centre, at an angle that counts from three o'clock against the clock.
    QPoint at(qreal radius, qreal angle) const
    {
        return (QPointF(249.5, 215.5) + QLineF::fromPolar(radius, angle).p2()).toPoint();
    }
    /// None where scaled, for this platform's screen then has the window's upper left part alone.
    QColor seenAt(qreal radius, qreal angle) const
    {
        const QImage image = screen()->grabWindow(winId()).toImage();
        const QPointF middle = (QPointF(at(radius, angle)) + QPointF(0.5, 0.5)) * devicePixelRatio();
        const QPoint pixel(static_cast<int>(middle.x()), static_cast<int>(middle.y()));
        return image.valid(pixel) ? image.pixelColor(pixel) : QColor();
    }
    void click(qreal radius, qreal angle) { QTest::mouseClick(this, Qt::LeftButton, {}, at(radius, angle)); }

    /// What the pointer shows there: a tooltip, and whether it is a hand.
    std::pair<QString, bool> hover(qreal radius, qreal angle)
    {
        QTest::mouseMove(this, at(radius, angle));
        QHelpEvent help(QEvent::ToolTip, at(radius, angle), mapToGlobal(at(radius, angle)));
        QCoreApplication::sendEvent(this, &help);
        return {QToolTip::text(), cursor().shape() == Qt::PointingHandCursor};
    }
    /// The words beside the slice that the keyboard is on.
    const SideTip *words() const
    {
        const auto *tip = findChild<SideTip *>();
        return tip && tip->isVisible() ? tip : nullptr;
    }

    void showAreaDetails(const TVXAreaPtr &area, int ofIndex) override
    {
        reports += (area ? area->name() : u"-"_s) + QString::number(ofIndex) + u' ';
    }
    void updatePercentValues() override {}
    void announce(QAccessibleEvent &event) override
    {
        announcements.emplace_back(event.type(), event.child());
    }

    TVXProjectPtr project = std::make_shared<TVXProject>();
    std::shared_ptr<WheelPieceList> pieces = std::make_shared<WheelPieceList>();
    QAccessibleInterface *graphic = QAccessible::queryAccessibleInterface(this);
    QString reports;
    QList<std::pair<QAccessible::Event, int>> announcements;
};

} // namespace

class TarvexViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void releasingTheLeftButtonReportsTheLowestSliceUnderIt()
    {
        WheelOnScreen wheel;
        for (int hour = 0; hour < 12; ++hour)
            wheel.click(208, 80 - 30 * hour);
        wheel.click(211, 0);
        QTest::mouseClick(&wheel, Qt::RightButton, {}, wheel.at(100, 20));
        QTest::mousePress(&wheel, Qt::LeftButton, {}, wheel.at(100, 20));
        wheel.pieces->at(1)->append(WheelGeometry::sliceOutline({250, 215}, /*index=*/2));
        QTest::mouseRelease(&wheel, Qt::LeftButton, {}, wheel.at(100, -20));
        QCOMPARE(wheel.reports, u"a0 a0 b1 c2 c2 d3 e4 e4 f5 g6 g6 h7 b1 "_s);
    }

    void keysWalkRoundTheDialAndChoose()
    {
        using enum Qt::Key;
        WheelOnScreen wheel;
        wheel.setLayoutDirection(Qt::RightToLeft); // the dial is not mirrored
        for (const Qt::Key key : {Key_Return, Key_Right, Key_Down, Key_Enter, Key_Home, Key_Left, Key_Up,
                                  Key_Space, Key_End, Key_A, Key_Right, Key_Return})
            QTest::keyClick(&wheel, key);
        QKeyEvent held(QEvent::KeyPress, Key_Return, Qt::NoModifier, QString(), /*autorep=*/true);
        QCoreApplication::sendEvent(&wheel, &held);
        QCOMPARE(wheel.reports, u"a0 c2 g6 a0 "_s);
    }

    void whateverIsMissingIsSkipped()
    {
        WheelOnScreen wheel(/*pieceCount=*/5);
        wheel.pieces->front() = std::make_shared<WheelPiece>(); // not drawn yet
        wheel.click(100, 80);
        wheel.project->areas()->resize(2);
        wheel.display();
        QCOMPARE(wheel.hover(100, -80), std::pair(QString(), false));
        QCOMPARE(wheel.hover(100, 20), std::pair(plainToolTip(u"b: 0 - Very Bad."_s), true));
        for (const int angle : {80, -80, 100})
            wheel.click(100, angle);
        QAccessibleInterface *slice = wheel.graphic->child(1);
        wheel.project->areas()->clear();
        wheel.click(100, 20); // nothing to open
        wheel.setMainData(nullptr);
        for (const Qt::Key key : {Qt::Key_Right, Qt::Key_End, Qt::Key_Return})
            QTest::keyClick(&wheel, key);
        slice->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QVERIFY(!slice->isValid() && wheel.graphic->childCount() == 0);
        wheel.click(100, 20);
        wheel.setPiecesOfWheel(nullptr);
        wheel.display();
        wheel.click(100, 20);
        QCOMPARE(wheel.reports, u"a0 -3 -1 "_s);
    }

    void everyDrawOnScreenAddsACopyToTheFirstEightPieces()
    {
        WheelOnScreen wheel(/*pieceCount=*/16);
        const qint64 drawn = wheel.pieces->front()->copies();
        for (int draw = 0; draw < 10; ++draw)
            wheel.display();
        QCOMPARE(wheel.grab().toImage().pixelColor(wheel.at(100, 20)), wheel.palette().window().color());
        for (std::size_t piece = 0; piece < 16; ++piece)
            QCOMPARE(wheel.pieces->at(piece)->copies(), piece < 8 ? drawn + 10 : 0);
    }

    void paleSectorReachesAsFarAsTheValue()
    {
        WheelOnScreen wheel;
        wheel.project->areas()->at(3)->setValueOfArea(-1); // no sector at all
        QStringList pictures; // pale or not from the rim of slice 3 through the centre and out of slice 7
        for (const qint32 value : {-1, 0, 5, 9, 1000, 102'261'125, -5, 102'261'126}) {
            wheel.project->areas()->back()->setValueOfArea(value);
            wheel.display();
            pictures += QString();
            for (const int radius : {-225, -150, -60, -30, -15, 15, 30, 60, 150, 225}) {
                const QColor slice = wheel.colors()[radius < 0 ? 3 : 7];
                const QColor bare = std::abs(radius) > 210 ? wheel.palette().window().color() : slice;
                const QColor seen = wheel.seenAt(radius, /*angle=*/114);
                const bool isPale = std::abs(seen.green() - 0.7 * 255 - 0.3 * bare.green()) < 3;
                pictures.back() += seen.rgb() == bare.rgb() ? u'.' : isPale ? u'P' : u'?';
            }
        }
        QCOMPARE(pictures, u".......... .....P.... .....PPP.. .....PPPP. .....PPPPP .....PPPPP "
                           "..PPP..... PPPPP....."_s.split(u' '));
    }

    void whatIsSeenIsWhatIsClicked()
    {
        const WheelOnScreen wheel;
        int compared = 0;
        for (int line = 0; line < 360; line += 45)
            for (const int beside : {1, 12, 23, 34, 44}) {
                const int angle = line + beside;
                const std::optional<int> clicked = wheel.pieceAt(wheel.at(/*radius=*/150, angle));
                QVERIFY(clicked && wheel.pieceAt(wheel.at(/*radius=*/207, angle)) == clicked);
                QVERIFY(!wheel.pieceAt(wheel.at(/*radius=*/213, angle)));
                for (const int radius : {150, 207, 213}) {
                    const QColor seen = wheel.seenAt(radius, angle);
                    const QColor drawn = radius > 210 ? wheel.palette().window().color()
                                                      : wheel.colors().at(static_cast<std::size_t>(*clicked));
                    QVERIFY(!seen.isValid() || seen.rgb() == drawn.rgb());
                    compared += seen.isValid() ? 1 : 0;
                }
            }
        QVERIFY(compared > 10);
    }

    void ringMarksTheSliceReachedByKeyboardOnly()
    {
        WheelOnScreen wheel;
        const auto isRinged = [&](int slice) { // by a dark line just within the rim
            wheel.display();
            return wheel.seenAt(203, 67.5 - 45 * slice).lightness() < 40;
        };
        wheel.clearFocus();
        wheel.setFocus(Qt::BacktabFocusReason);
        QVERIFY(isRinged(0));
        wheel.clearFocus();
        wheel.click(100, -20);
        QVERIFY(!wheel.hasFocus());                       // stays where it was
        QVERIFY(wheel.seenAt(100, 45).lightness() > 250); // between two slices
        wheel.setFocus(Qt::TabFocusReason);
        wheel.click(100, -20);
        QVERIFY(!isRinged(0) && !isRinged(2));
        QTest::keyClick(&wheel, Qt::Key_Right);
        QTest::keyClick(&wheel, Qt::Key_Left);
        QVERIFY(!isRinged(0) && isRinged(2));
    }

    void aSliceTellsItsValueAndPercentInWords_data() { addSampleRows("words.txt"); }
    void aSliceTellsItsValueAndPercentInWords()
    {
        const auto [name, value, percent, words] = sampleRow<4>();
        const QString said = sliceWords(QString::fromUtf8(name), value.toInt(), QString::fromUtf8(percent));
        QCOMPARE(said.toUtf8(), words);
    }

    void wordsStandBesideTheSliceReachedByKeyboardOnly()
    {
        WheelOnScreen wheel;
        wheel.project->areas()->at(2)->setName(QString(40, u'W'));
        for (const int width : {900, 501}) {
            wheel.resize(width, 431);
            for (int index = 1; index <= 8; ++index) {
                QTest::keyClick(&wheel, Qt::Key_Right);
                wheel.setPercentTexts({QString::number(width)});
                const QRectF slice =
                    WheelGeometry::sliceOutline(WheelGeometry::centre(wheel.size()), index % 8)
                        .boundingRect();
                QVERIFY(wheel.words());
                const QRect words = wheel.words()->geometry();
                QVERIFY(words.right() < slice.left() || words.left() > slice.right());
                QVERIFY(wheel.rect().contains(words));
                QCOMPARE(wheel.words()->text(),
                         wheel.graphic->child(index % 8)->text(QAccessible::Description));
            }
        }
        const std::vector<std::function<void()>> ways = {
            [&] { QTest::keyClick(&wheel, Qt::Key_Escape); }, [&] { wheel.hover(90, 20); },
            [&] { wheel.click(100, 20); }, [&] { wheel.clearFocus(); }};
        for (const auto &end : ways) {
            QTest::keyClick(&wheel, Qt::Key_Home);
            QVERIFY(wheel.words());
            end();
            QVERIFY(!wheel.words());
        }
    }

    void assistiveToolsHearOfChangesAndReadThem()
    {
        WheelOnScreen wheel;
        wheel.clearFocus();
        QCoreApplication::processEvents();
        wheel.announcements.clear();
        wheel.project->areas()->at(2)->setName(u"Health"_s);
        wheel.project->areas()->at(2)->setValueOfArea(9);
        wheel.display();
        wheel.setPercentTexts({u"75"_s});
        wheel.setFocus(Qt::TabFocusReason);
        QCoreApplication::processEvents();
        QTest::keyClick(&wheel, Qt::Key_Right);
        using enum QAccessible::Event;
        const decltype(wheel.announcements) expected = {
            {NameChanged, 2},        {ValueChanged, 2}, {DescriptionChanged, 2},
            {DescriptionChanged, 0}, {Focus, 0},        {Focus, 1}};
        QCOMPARE(wheel.announcements, expected);
        const auto slice = [&](int index) { return wheel.graphic->child(index); };
        QCOMPARE(slice(2)->text(QAccessible::Name), u"Health"_s);
        QCOMPARE(slice(2)->text(QAccessible::Value), u"9"_s);
        QCOMPARE(slice(2)->valueInterface()->maximumValue(), 9); // beyond the slider's usual 8
        QCOMPARE(slice(4)->valueInterface()->maximumValue(), 8);
        QCOMPARE(wheel.graphic->focusChild(), slice(1));
        QVERIFY(slice(1)->state().focused && !slice(0)->state().focused);
    }

    void eachAreaIsAChildThatLiesAndActsLikeItsSlice()
    {
        WheelOnScreen wheel;
        for (int index = 0; index < 8; ++index) {
            QAccessibleInterface *slice = wheel.graphic->child(index);
            slice->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
            const QRect rect = slice->rect();
            for (const QPoint &point :
                 {rect.topLeft(), rect.topRight(), rect.bottomLeft(), rect.bottomRight()})
                QCOMPARE(wheel.graphic->childAt(point.x(), point.y()), slice);
        }
        QVERIFY(!wheel.graphic->childAt(wheel.x() + 3, wheel.y() + 3));
        QCOMPARE(wheel.reports, u"a0 b1 c2 d3 e4 f5 g6 h7 "_s);
    }
};

QTEST_MAIN(TarvexViewTest)
#include "TarvexViewTest.moc"
