#include "WheelGeometry.h"
#include "WheelPiece.h"

#include <QtTest>

using namespace WheelGeometry;

class WheelGeometryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theWheelIsMadeOfTheseNumbers()
    {
        QByteArrayList names;
        for (const QColor &color : colors())
            names += color.name().toLatin1();
        QCOMPARE(names.join(' '), "#b699c9 #f5bf39 #95c848 #50afe3 #d75e87 #60d5b9 #e3e380 #e9f439");
        QCOMPARE(valueColor(), QColor::fromRgbF(1, 1, 1, 0.7F));
        QCOMPARE(anglesStart, (std::array<float, 8>{45, 0, 315, 270, 225, 180, 135, 90}));
        QCOMPARE(anglesEnd, (std::array<float, 8>{90, 45, 360, 315, 270, 225, 180, 135}));
        QCOMPARE(middleAngle(/*index=*/2), 337.5);
        QCOMPARE(sliceOutline({215, 215}, /*index=*/0).boundingRect().toRect(), QRect(215, 215, 148, 210));
        QCOMPARE(QList({valueRadius(-1), valueRadius(0), valueRadius(9)}), QList({0, 21, 210}));
        QCOMPARE(fittedInto({0, 0, 100, 100}).map(QPointF(0, 210)), QPointF(50, 1)); // twelve o'clock
    }

    void centreIsCutToWholeNumbersFromTheBottomLeft()
    {
        QCOMPARE(centre({501, 400}), QPointF(250, 200));
        QCOMPARE(flipped(centre({501, 401}), 401), QPointF(250, 201));
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
