#include "ReportSample.h"
#include "Samples.h"

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
    void reportsAreLaidOutToTheLastRectangle()
    {
        QVERIFY(!reportSamples().isEmpty());
        for (const ReportSample &sample : reportSamples()) {
            const QStringList actual = described(sample).split(u'\n');
            const QStringList expected = sample.expected.split(u'\n');
            for (qsizetype i = 0; i < std::max(actual.size(), expected.size()); ++i)
                QCOMPARE(sample.name + actual.value(i), sample.name + expected.value(i));
        }
    }

    void pagesAreCountedInSinglePrecision_data() { addSampleRows("pages.rows"); }
    void pagesAreCountedInSinglePrecision()
    {
        const auto [printable, lines, goals, outcome] = sampleRow<4>();
        const QRectF page(28.8, 28.8, 554.4, printable.toDouble());
        const ReportLineHeights heights{/*title=*/30, lines.split(' ')[0].toFloat(),
                                        lines.split(' ')[1].toFloat()};
        const float height = ReportPages::documentHeight(heights, goals.toLongLong());
        const qint64 pages = ReportPages::countPages(height, ReportPages::pageHeight(page));
        const QRectF last = ReportPages::rectForPage(page, pages);
        QCOMPARE(QByteArray::number(pages) + ' ' + QByteArray::number(last.y(), 'g', 12), outcome);
        QCOMPARE(last.height(), page.height());
    }
};

QTEST_APPLESS_MAIN(ReportLayoutTest)
#include "ReportLayoutTest.moc"
