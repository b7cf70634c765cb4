#include "ElidedLabel.h"
#include "MessageLine.h"
#include "RotatedLabel.h"

#include <QTest>

class LabelsTest : public QObject
{
    Q_OBJECT

private:
    static QRect inkOf(const QImage &image)
    {
        QRect ink;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (qGray(image.pixel(x, y)) < 128)
                    ink |= QRect(x, y, 1, 1);
        return ink;
    }

private Q_SLOTS:
    void textFromOutsideIsOneBoundedLine()
    {
        const QString line = singleLineOf(QStringLiteral("a\nb\tc\u2028d\u0000e") + QString(5000, u'x'));
        QVERIFY(line.startsWith(QStringLiteral("a b c d")));
        QVERIFY(!line.contains(u'\n'));
        QVERIFY(line.size() <= 1000);
        QVERIFY(
            plainToolTip(QStringLiteral("<img src=x>&")).contains(QStringLiteral("&lt;img src=x&gt;&amp;")));
    }

    void markupIsShownAsItIsWritten()
    {
        const auto inkWidth = [](const QString &text) {
            ElidedLabel label;
            label.setText(text);
            label.resize(600, 30);
            QImage image(label.size(), QImage::Format_RGB32);
            image.fill(Qt::white);
            label.render(&image);
            return inkOf(image).width();
        };
        QVERIFY(inkWidth(QStringLiteral("<b>markup</b> & more")) >
                inkWidth(QStringLiteral("markup more")) + 30);
    }

    void aLabelTurnsAboutTheCentreItIsGiven_data()
    {
        QTest::addColumn<qreal>("degrees");
        for (const qreal degrees : {0.0, -22.5, -115.0, 150.5, 90.0})
            QTest::addRow("%.1f", degrees) << degrees;
    }

    void aLabelTurnsAboutTheCentreItIsGiven()
    {
        QFETCH(qreal, degrees);
        QWidget parent;
        parent.resize(300, 200);
        RotatedLabel label(&parent);
        label.setText(QStringLiteral("MMMM"));
        label.setFrameRotation(degrees);
        label.setFrameCentredAt(QPointF(100, 50), QSizeF(80, 20), parent.height());
        const QPointF centre = label.geometry().toRectF().center();
        QVERIFY2(QLineF(centre, QPointF(100, 150)).length() < 1.5, qPrintable(QDebug::toString(centre)));

        QImage image(label.size(), QImage::Format_RGB32);
        image.fill(Qt::white);
        label.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
        const QRect ink = inkOf(image);
        QVERIFY(!ink.isEmpty());
        QVERIFY(QLineF(QRectF(ink).center(), QRectF(image.rect()).center()).length() < 5);
    }

    void theMessageLineKeepsAllAndShowsABoundedPart()
    {
        MessageLine line;
        line.resize(300, 100);
        line.show();
        const QString huge = QStringLiteral("<b>no</b> ").repeated(1'000'000);
        line.setText(huge);
        QCOMPARE(line.text(), huge);
        QVERIFY(line.toPlainText().size() < 5000);
        QVERIFY(line.toPlainText().startsWith(QStringLiteral("<b>no</b>")));
        QVERIFY(line.sizeHint().height() < 12 * line.fontMetrics().height());
    }
};

QTEST_MAIN(LabelsTest)
#include "LabelsTest.moc"
