#include "DialGeometry.h"

#include <QPainterPath>
#include <QTest>
#include <QTransform>

class DialGeometryTest : public QObject
{
    Q_OBJECT

private:
    static QPolygonF turnedPercent(const DialGeometry &dial, const DialGeometry::TextSizes &text,
                                   std::size_t k, int height)
    {
        const QPointF centre(dial.percentCentres[k].x(), height - dial.percentCentres[k].y());
        const QTransform turn =
            QTransform::fromTranslate(centre.x(), centre.y()).rotate(-DialGeometry::percentRotations[k]);
        const QSizeF size = text.percent;
        return turn.map(
            QPolygonF(QRectF(-size.width() / 2, -size.height() / 2, size.width(), size.height())));
    }

private Q_SLOTS:
    void nothingOverlapsAtAnySize_data()
    {
        QTest::addColumn<QSize>("area");
        QTest::addColumn<qreal>("textScale");
        for (const qreal scale : {1.0, 1.5, 2.0}) {
            DialGeometry::TextSizes text = scaled(scale);
            const QSize least = DialGeometry::minimumArea(text);
            QTest::addRow("least at %.1f", scale) << least << scale;
            QTest::addRow("odd at %.1f", scale) << least + QSize(37, 11) << scale;
            QTest::addRow("large at %.1f", scale) << QSize(1900, 1100) << scale;
        }
    }

    void nothingOverlapsAtAnySize()
    {
        QFETCH(QSize, area);
        QFETCH(qreal, textScale);
        const DialGeometry::TextSizes text = scaled(textScale);
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
            QPainterPath percent;
            percent.addPolygon(turnedPercent(dial, text, k, area.height()));
            percent.closeSubpath();
            QVERIFY(QRectF(window).contains(percent.boundingRect()));
            // The labels that deliberately lean dip a little into the rim's edge, never into the value's
            // text.
            QVERIFY(rim.intersected(percent).boundingRect().height() < 6 * textScale);
            for (const QRect &name : dial.names)
                QVERIFY(!percent.intersects(QRectF(name).adjusted(0, 3, 0, -3)));
        }
    }

private:
    static DialGeometry::TextSizes scaled(qreal scale)
    {
        DialGeometry::TextSizes text;
        text.nameHeight = qRound(text.nameHeight * scale);
        text.nameWidthAtSide = qRound(text.nameWidthAtSide * scale);
        text.nameWidthBesideAverage = qRound(text.nameWidthBesideAverage * scale);
        text.percent *= scale;
        text.average *= scale;
        text.captionHeight = qRound(text.captionHeight * scale);
        return text;
    }
};

QTEST_APPLESS_MAIN(DialGeometryTest)
#include "DialGeometryTest.moc"
