#include "DialGeometry.h"
#include "Samples.h"

#include <QPainterPath>
#include <QTest>
#include <QTransform>

class DialGeometryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingOverlapsAtAnySize_data() { addSampleRows("windows.txt"); }
    void nothingOverlapsAtAnySize()
    {
        const auto [scale, width, height] = sampleRow<3>();
        const qreal textScale = scale.toDouble();
        DialGeometry::TextSizes text;
        text.nameHeight = qRound(text.nameHeight * textScale);
        text.nameWidthAtSide = qRound(text.nameWidthAtSide * textScale);
        text.nameWidthBesideAverage = qRound(text.nameWidthBesideAverage * textScale);
        text.percent *= textScale;
        text.average *= textScale;
        text.captionHeight = qRound(text.captionHeight * textScale);
        const QSize area = DialGeometry::minimumArea(text) + QSize(width.toInt(), height.toInt());
        const DialGeometry dial(area, text);
        QCOMPARE(DialGeometry::percentRotations,
                 (std::array<qreal, 8>{-22.5, -67.5, -115.0, -160.0, 150.5, 118.5, 67.5, 22.5}));
        const QRect window(QPoint(), area);
        QPainterPath rim;
        rim.addEllipse(dial.wheel.toRectF().center(), DialGeometry::wheelRadius, DialGeometry::wheelRadius);

        QCOMPARE(dial.wheel.size(), QSize(430, 430));
        for (std::size_t k = 0; k < 8; ++k) {
            QVERIFY(window.contains(dial.names[k]));
            QVERIFY(dial.names[k].width() >= text.nameWidthBesideAverage);
            QVERIFY(!dial.names[k].intersects(dial.average) && !dial.names[k].intersects(dial.caption));
            QPainterPath frame;
            frame.addRect({-QRectF({}, text.percent).center(), text.percent});
            const QPointF centre(dial.percentCentres[k].x(), area.height() - dial.percentCentres[k].y());
            const QPainterPath percent = QTransform::fromTranslate(centre.x(), centre.y())
                                             .rotate(-DialGeometry::percentRotations[k])
                                             .map(frame);
            QVERIFY(QRectF(window).contains(percent.boundingRect()));
            // The labels that deliberately lean dip a little into the rim's edge, never into the value's
            // text.
            QVERIFY(rim.intersected(percent).boundingRect().height() < 6 * textScale);
            for (const QRect &name : dial.names)
                QVERIFY(!percent.intersects(QRectF(name).adjusted(0, 3, 0, -3)));
        }
    }
};

QTEST_APPLESS_MAIN(DialGeometryTest)
#include "DialGeometryTest.moc"
