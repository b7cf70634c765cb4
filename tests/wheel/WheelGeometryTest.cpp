#include "WheelGeometry.h"
#include "WheelPiece.h"

#include <QtTest>

using namespace WheelGeometry;

class WheelGeometryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void centreIsCutToWholeNumbersFromTheBottomLeft()
    {
        QCOMPARE(centre({501, 400}), QPointF(250, 200));
        QCOMPARE(flipped(centre({501, 401}), 401), QPointF(250, 201));
    }

    void valueRadiusGrowsByTwentyOneAndWraps()
    {
        QList<qint32> radii;
        for (const qint32 value : {0, 9, 1000, -1, -5, 102261125, 102261126, 2147483647})
            radii << valueRadius(value);
        QCOMPARE(radii, QList<qint32>({21, 210, 21021, 0, -84, 2147483646, -2147483629, -2147483647 - 1}));
    }

    void slicesFollowTheClock()
    {
        QString clock; // the slices that contain the point ten degrees past each hour
        for (int hour = 0; hour < 12; ++hour)
            for (int index = 0; index < sliceCount; ++index)
                if (sliceOutline({0, 0}, index).contains(QLineF::fromPolar(209, 30 * hour - 80).p2()))
                    clock += QString::number(index);
        QCOMPARE(clock, QStringLiteral("001223445667"));
    }

    void focusLineAndInnerSquareStayInsideTheirSlice()
    {
        for (int index = 0; index < sliceCount; ++index) {
            const QPainterPath slice = sliceOutline({250, 200}, index);
            QVERIFY(slice.contains(insetOutline({250, 200}, index, /*inset=*/6)));
            QVERIFY(slice.contains(innerSquare({250, 200}, index)));
        }
    }

    void cutRadiusLeavesTheSamePicture()
    {
        const qreal seen = reach({215, 100}, {430, 201});
        for (const qint32 value : {-1000, -16, 9, 14, 15, 1000}) {
            const QPainterPath cut = valueSector({215, 100}, /*index=*/6, value, seen);
            const QPainterPath whole =
                sector({215, 100}, valueRadius(value), /*startAngle=*/135, /*endAngle=*/180);
            QVERIFY(cut.boundingRect().width() <= seen + 1);
            for (int x = 2; x < 430; x += 9)
                for (int y = 1; y < 201; y += 7)
                    QCOMPARE(cut.contains(QPointF(x, y)), whole.contains(QPointF(x, y)));
        }
    }

    void resizingKeepsEarlierOutlinesWithinBounds()
    {
        WheelPiece piece;
        const int sweep = static_cast<int>(WheelPiece::rememberedOutlines);
        for (int x = 1; x <= sweep; ++x)
            piece.append(sliceOutline(QPointF(x, 215), /*index=*/1));
        piece.append(sliceOutline({1, 215}, /*index=*/1));
        QCOMPARE(piece.outlinesToPaint().size(), WheelPiece::paintedOutlines);
        QCOMPARE(piece.outlinesToPaint().back(), sliceOutline({1, 215}, /*index=*/1));
        piece.append(sliceOutline({-500, 215}, /*index=*/1)); // the one drawn longest ago, at 2, gives way
        QCOMPARE(piece.outlines().size(), WheelPiece::rememberedOutlines);
        QVERIFY(piece.contains({1.5, 215.1}));
        QCOMPARE(piece.copies(), sweep + 2);
    }
};

QTEST_APPLESS_MAIN(WheelGeometryTest)
#include "WheelGeometryTest.moc"
