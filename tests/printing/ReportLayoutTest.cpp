#include "ReportSample.h"

#include <limits>

namespace {

QString described(const QRectF &rect)
{
    const auto number = [](qreal value) { return QString::number(value, 'g', 8); };
    return u"(%1, %2, %3, %4)"_s.arg(number(rect.x()), number(rect.y()), number(rect.width()),
                                     number(rect.height()));
}

QString described(const ReportItem &item)
{
    static const QStringList kinds = {u"title"_s, u"slice"_s, u"value"_s, u"name"_s, u"name on left"_s,
                                      u"[ ]"_s,   u"[x]"_s,   u"goal"_s,  u"area"_s, u"rule"_s};
    const bool isOfWheel = item.kind == ReportItem::Kind::Slice || item.kind == ReportItem::Kind::Value;
    const bool isPicture =
        item.kind == ReportItem::Kind::CheckboxOff || item.kind == ReportItem::Kind::CheckboxOn;
    QString line = kinds[static_cast<int>(item.kind)] + u' ' + described(item.rect);
    if (isOfWheel)
        line += u' ' + QString::number(item.index);
    else if (!isPicture && item.kind != ReportItem::Kind::Rule)
        line += u" \"%1\""_s.arg(item.text);
    return line;
}

/// The report page by page, every item with its rectangle.
QString described(const ReportSample &sample)
{
    const auto goals = static_cast<qint64>(sample.project->goals()->size());
    const float height = ReportPages::documentHeight(sample.lineHeights, goals);
    const qint64 pages = ReportPages::countPages(height, ReportPages::pageHeight(sample.page));
    const ReportLayout layout(*sample.project, sample.title, sample.lineHeights);
    QStringList lines = {u"height %1"_s.arg(static_cast<double>(height))};
    for (qint64 page = 1; page <= pages; ++page) {
        const QRectF rect = ReportPages::rectForPage(sample.page, page);
        lines += u"page %1 %2"_s.arg(QString::number(page), described(rect));
        for (const ReportItem &item : layout.itemsOnPage(rect, pages))
            lines += u"  "_s + described(item);
    }
    return lines.join(u'\n') + u'\n';
}

} // namespace

class ReportLayoutTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reportsAreLaidOutToTheLastRectangle_data()
    {
        QTest::addColumn<QString>("actual");
        QTest::addColumn<QString>("expected");
        const QList<ReportSample> samples = reportSamples();
        QVERIFY(!samples.isEmpty());
        for (const ReportSample &sample : samples)
            QTest::newRow(qPrintable(sample.name)) << described(sample) << sample.expected;
    }
    void reportsAreLaidOutToTheLastRectangle()
    {
        QFETCH(QString, actual);
        QFETCH(QString, expected);
        const QStringList actualLines = actual.split(u'\n');
        const QStringList expectedLines = expected.split(u'\n');
        for (qsizetype i = 0; i < std::max(actualLines.size(), expectedLines.size()); ++i)
            QCOMPARE(actualLines.value(i), expectedLines.value(i));
    }

    void pagesAreCountedInSinglePrecision_data()
    {
        QTest::addColumn<double>("printable");
        QTest::addColumn<float>("area");
        QTest::addColumn<float>("goal");
        QTest::addColumn<qint64>("goals");
        QTest::addColumn<qint64>("pages");
        QTest::addColumn<double>("lastPageAt");
        constexpr double infinite = std::numeric_limits<double>::infinity();
        QTest::newRow("twelve goals") << 734.4 << 20.0F << 17.0F << 12LL << 2LL << 734.0;
        QTest::newRow("exactly one page") << 820.9 << 20.0F << 17.0F << 12LL << 1LL << 0.0;
        QTest::newRow("exactly two pages") << 410.0 << 20.0F << 17.0F << 12LL << 2LL << 410.0;
        QTest::newRow("one point more") << 409.99 << 20.0F << 17.0F << 12LL << 3LL << 818.0;
        QTest::newRow("a fraction more") << 820.0 << 20.0F << 17.0001F << 12LL << 2LL << 820.0;
        QTest::newRow("a fraction lost in rounding")
            << 16001000.0 << 0.0F << 16.0F << 1000030LL << 1LL << 0.0;
        QTest::newRow("less than a point") << 0.9 << 20.0F << 17.0F << 12LL << 1LL << 0.0;
        QTest::newRow("no height") << 0.0 << 20.0F << 17.0F << 12LL << 1LL << 0.0;
        QTest::newRow("endless") << infinite << 20.0F << 17.0F << 12LL << 1LL << 0.0;
    }
    void pagesAreCountedInSinglePrecision()
    {
        QFETCH(double, printable);
        QFETCH(float, area);
        QFETCH(float, goal);
        QFETCH(qint64, goals);
        QFETCH(qint64, pages);
        const QRectF page(28.8, 28.8, 554.4, printable);
        const float height = ReportPages::documentHeight({/*title=*/30, area, goal}, goals);
        QCOMPARE(ReportPages::countPages(height, ReportPages::pageHeight(page)), pages);
        const QRectF last = ReportPages::rectForPage(page, pages);
        QTEST(last.y(), "lastPageAt");
        QCOMPARE(last.height(), printable);
    }
};

QTEST_APPLESS_MAIN(ReportLayoutTest)
#include "ReportLayoutTest.moc"
