#include "PrintOperation.h"
#include "ReportSample.h"

#include <QFontInfo>
#include <QPainter>
#include <QScreen>

namespace {

struct Report
{
    explicit Report(const ReportSample &sample, const QPageLayout &paper)
        : operation(std::make_unique<TVXPrintView>(), PrintInfo())
    {
        view.setProject(sample.project);
        view.setTitleOfDocument(sample.title);
        pages = operation.layOutFor(paper).length;
    }

    PrintOperation operation;
    TVXPrintView &view = operation.view();
    qint64 pages = 0;
};

/// A page in pixels; without items as the operation draws it, else drawn from them and cut at its edges.
QImage picture(Report &report, qint64 page, const ReportItems *items = nullptr)
{
    const QRectF rect = report.view.rectForPage(page);
    constexpr qreal zoom = 1.3;
    QImage image((rect.size() * zoom).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.scale(zoom, zoom);
    if (!items) {
        report.operation.drawPage(painter, page);
        return image;
    }
    painter.setClipRect(QRectF(QPointF(), rect.size()));
    painter.translate(-rect.topLeft());
    report.view.drawItems(painter, *items);
    return image;
}

QPageLayout paper(const QSizeF &size, qreal margin)
{
    const QMarginsF margins(margin, margin, margin, margin);
    return {QPageSize(size, QPageSize::Point, u"Paper"_s, QPageSize::ExactMatch), QPageLayout::Portrait,
            margins};
}

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
    void everyPageLooksAsIfAllHadBeenDrawnAndCut_data()
    {
        QTest::addColumn<QSizeF>("size");
        QTest::addColumn<qreal>("margin");
        QTest::newRow("A4") << QSizeF(595, 842) << 18.0;
        QTest::newRow("fractions of points") << QSizeF(420.4, 300.9) << 28.8;
        QTest::newRow("little more than a row") << QSizeF(500, 40) << 7.5;
    }
    void everyPageLooksAsIfAllHadBeenDrawnAndCut()
    {
        QFETCH(QSizeF, size);
        QFETCH(qreal, margin);
        QList<ReportSample> samples = reportSamples();
        samples.append(oddTexts());
        for (const ReportSample &sample : samples) {
            Report report(sample, paper(size, margin));
            QVERIFY(report.pages > 0);
            QCOMPARE(report.view.frame().width(), size.width());
            QCOMPARE(report.view.rectForPage(2).width(), size.width() - 2 * margin);
            const ReportItems all =
                report.view.layoutOfReport().allItems(report.view.pageRect(), report.pages);
            for (qint64 page = 1; page <= report.pages; ++page)
                QVERIFY2(picture(report, page) == picture(report, page, &all),
                         qPrintable(u"%1, page %2"_s.arg(sample.name).arg(page)));
        }
    }

    void itPrintsButStaysBlankOnTheScreen()
    {
        Report report(oddTexts(), paper({595, 842}, 18));
        report.view.resize(300, 300);
        report.view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&report.view));
        QImage seen = report.view.screen()->grabWindow(report.view.winId()).toImage();
        QImage blank = seen.copy();
        blank.fill(seen.pixelColor(0, 0));
        QVERIFY(seen == blank);
        QVERIFY(report.view.grab().toImage() != blank);
    }

    void tabsAndLettersOfOtherFontsKeepTheLine()
    {
        const TVXPrintView view;
        const auto drawn = [&](const QString &text) {
            QImage image(300, 17, QImage::Format_ARGB32_Premultiplied);
            constexpr int asPrintersHave = 47'244; // 1200 dots per inch
            image.setDotsPerMeterX(asPrintersHave);
            image.setDotsPerMeterY(asPrintersHave);
            image.fill(Qt::white);
            QPainter painter(&image);
            drawOneLine(painter, image.rect(), text, view.attributesDefault());
            return image;
        };
        const QImage plain = drawn(u"Buy a tent"_s);
        QCOMPARE(drawn(u"Buy\ta tent"_s), plain);
        const QRect letters(0, 0, 55, 17);
        QCOMPARE(drawn(u"Buy a tent 🎯 שלום"_s).copy(letters), plain.copy(letters));
    }

    void theWheelRunsClockwiseFromTwelve()
    {
        ReportSample sample;
        for (const qint32 value : {0, 9, 10, -3, 4, 5, 6, 7})
            sample.addArea(value, value, u""_s);
        Report report(sample, paper({636, 842}, 18)); // the centre is at (300, 170)
        const ReportItems wheel = report.view.layoutOfReport().allItems(report.view.pageRect(), 1);
        QImage image(600, 400, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        QPainter painter(&image);
        report.view.drawItems(painter, wheel);
        const auto seenAt = [&](qreal radius, qreal clockwise) {
            return image.pixelColor(
                (QPointF(300, 170) + QLineF::fromPolar(radius, 90 - clockwise).p2()).toPoint());
        };
        const auto near = [](const QColor &seen, const QColor &color, float paleness = 0) {
            const auto differ = [&](float a, float b) {
                return std::abs(a - b - (1 - b) * paleness) > 0.01F;
            };
            return !differ(seen.redF(), color.redF()) && !differ(seen.greenF(), color.greenF()) &&
                   !differ(seen.blueF(), color.blueF());
        };
        const auto &colors = report.view.colors();
        QVERIFY(near(seenAt(20, 20), colors[0])); // 0 has no pale sector
        QVERIFY(near(seenAt(95, 70), colors[1], 0.7F));
        QVERIFY(near(seenAt(105, 70), colors[1])); // 9 ends at 99
        QVERIFY(near(seenAt(105, 115), colors[2], 0.7F));
        QVERIFY(near(seenAt(100, 340), colors[7]));
        QVERIFY(near(seenAt(113, 340), Qt::white));
    }
};

QTEST_MAIN(TVXPrintViewTest)
#include "TVXPrintViewTest.moc"
