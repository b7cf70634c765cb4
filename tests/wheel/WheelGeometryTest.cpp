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

    void focusLineStaysInsideItsSlice()
    {
        for (int index = 0; index < sliceCount; ++index)
            QVERIFY(sliceOutline({250, 200}, index).contains(insetOutline({250, 200}, index, /*inset=*/6)));
    }

    void absurdValuesReachBeyondTheCornersAndNoFarther()
    {
        const qreal seen = reach({215, 100}, {430, 201});
        QVERIFY(seen > std::hypot(215, 101));
        for (const qint32 value : {102'261'125, 102'261'126})
            QVERIFY(valueSector({215, 100}, /*index=*/6, value, seen).boundingRect().width() <= seen + 1);
    }

    void resizingKeepsEarlierOutlinesWithinBounds()
    {
        WheelPiece piece;
        for (std::size_t x = 1; x <= WheelPiece::rememberedOutlines; ++x)
            piece.append(sliceOutline({static_cast<qreal>(x), 215}, /*index=*/1));
        piece.append(sliceOutline({1, 215}, /*index=*/1));
        QCOMPARE(piece.outlinesToPaint().size(), WheelPiece::paintedOutlines);
        QCOMPARE(piece.outlinesToPaint().back(), sliceOutline({1, 215}, /*index=*/1));
        piece.append(sliceOutline({-500, 215}, /*index=*/1)); // the one drawn longest ago, at 2, gives way
        QCOMPARE(piece.outlines().size(), WheelPiece::rememberedOutlines);
        QVERIFY(piece.contains({1.5, 215.1}));
    }
};

QTEST_APPLESS_MAIN(WheelGeometryTest)
#include "WheelGeometryTest.moc"
