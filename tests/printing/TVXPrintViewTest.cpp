#include "PrintOperation.h"
#include "ReportSample.h"

#include <QPainter>

class TVXPrintViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesAreAsHighAsTheirFontsAsk()
    {
        const TVXPrintView view;
        for (const auto &[attributes, size, height] :
             {std::tuple(view.attributesTitle(), 18, view.lineHeightTitle()),
              {view.attributesAreas(), 14, view.lineHeightArea()},
              {view.attributesDefault(), 11, view.lineHeight()}}) {
            QCOMPARE(attributes.font().pixelSize(), size);
            QCOMPARE(height, static_cast<float>(2.2 * QFontMetricsF(attributes.font()).capHeight()));
        }
    }

    void tabsAndLettersOfOtherFontsKeepTheLine()
    {
        const TVXPrintView view;
        const auto drawn = [&](const QString &text, int height = 17) {
            QImage image(300, 60, QImage::Format_ARGB32_Premultiplied);
            constexpr int asPrintersHave = 47'244; // 1200 dots per inch
            image.setDotsPerMeterX(asPrintersHave);
            image.setDotsPerMeterY(asPrintersHave);
            image.fill(Qt::white);
            QPainter painter(&image);
            drawOneLine(painter, QRect(0, 20, 300, height), text, view.attributesDefault());
            return image;
        };
        const QImage plain = drawn(u"Buy a tent"_s);
        QCOMPARE(drawn(u"Buy\ta tent"_s), plain);
        const QRect letters(0, 0, 55, 60);
        QCOMPARE(drawn(u"Buy a tent 🎯 שלום"_s).copy(letters), plain.copy(letters));
        constexpr int lessThanItsLetters = 6;
        const QRect below(0, 20 + lessThanItsLetters, 300, 40 - lessThanItsLetters);
        QVERIFY(plain.copy(below) != drawn(QString()).copy(below));
        QCOMPARE(drawn(u"Buy a tent"_s, lessThanItsLetters).copy(below), drawn(QString()).copy(below));
    }
};

QTEST_MAIN(TVXPrintViewTest)
#include "TVXPrintViewTest.moc"
