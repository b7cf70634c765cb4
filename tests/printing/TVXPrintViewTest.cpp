#include "PrintOperation.h"
#include "ReportSample.h"

#include <QFontInfo>
#include <QPainter>
#include <QScreen>

namespace {

ReportSample oddTexts()
{
    ReportSample sample;
    sample.title = u"A title that goes on and on "_s.repeated(9);
    const QStringList texts = {u"plain"_s,
                               u"long "_s.repeated(2000),
                               QString(10'000, u'W'),
                               u"עברית וعربي"_s,
                               u"Emoji 🎯🌱👩‍👩‍👧"_s,
                               u"two\nlines"_s,
                               u"\u2028"_s,
                               u"Z"_s + u"\u0310\u0330"_s.repeated(40),
                               QString(QChar(0xD800)) + QChar(0) + u"\t\x7f"_s,
                               u""_s};
    for (int area = 0; area < 8; ++area)
        sample.addArea(area, QList{0, 4, 8, 9, -1, 1000, 195225787, 3}[area], texts[area]);
    for (int goal = 0; goal < 120; ++goal)
        sample.addGoal(goal % 9, goal % 11, goal % 3 == 0, texts[goal % texts.size()]);
    return sample;
}

} // namespace

class TVXPrintViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itPrintsButStaysBlankOnTheScreen()
    {
        const ReportSample sample = oddTexts();
        TVXPrintView view;
        view.setProject(sample.project);
        view.setTitleOfDocument(sample.title);
        view.resize(300, 300);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        const QImage seen = view.screen()->grabWindow(view.winId()).toImage();
        QImage blank = seen.copy();
        blank.fill(seen.pixelColor(0, 0));
        QVERIFY(seen == blank);
        QVERIFY(view.grab().toImage() != blank);
    }

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
        constexpr QRect line(0, 20, 300, 17);
        const auto drawn = [&](const QString &text) {
            QImage image(300, 60, QImage::Format_ARGB32_Premultiplied);
            constexpr int asPrintersHave = 47'244; // 1200 dots per inch
            image.setDotsPerMeterX(asPrintersHave);
            image.setDotsPerMeterY(asPrintersHave);
            image.fill(Qt::white);
            QPainter painter(&image);
            drawOneLine(painter, line, text, view.attributesDefault());
            return image;
        };
        const QImage plain = drawn(u"Buy a tent"_s);
        QCOMPARE(drawn(u"Buy\ta tent"_s), plain);
        const QRect letters(0, 0, 55, 60);
        QCOMPARE(drawn(u"Buy a tent 🎯 שלום"_s).copy(letters), plain.copy(letters));
        const QRect below = QRect(0, 37, 300, 23);
        QCOMPARE(drawn(u"Z"_s + u"\u0310\u0330"_s.repeated(40)).copy(below), drawn(QString()).copy(below));
    }
};

QTEST_MAIN(TVXPrintViewTest)
#include "TVXPrintViewTest.moc"
