#include "PrintOperation.h"
#include "ReportPdf.h"
#include "ReportSample.h"

#include <csignal>
#include <QPdfWriter>
#include <QPrinter>
#include <QProcess>
#include <QTemporaryDir>
#include <sys/resource.h>

namespace {

constexpr int goalCount = 130;
const QPageLayout a4(QPageSize(QPageSize::A4), QPageLayout::Portrait, {18, 18, 18, 18});

PrintOperation operationWithGoals()
{
    ReportSample sample;
    for (int area = 0; area < 8; ++area)
        sample.addArea(area, area, u"Area%1"_s.arg(area));
    for (int goal = 0; goal < goalCount; ++goal)
        sample.addGoal(goal * 8 / goalCount, 5, goal % 2 == 0, u"office%1."_s.arg(goal));
    auto view = std::make_unique<TVXPrintView>();
    view->setProject(sample.project);
    view->setTitleOfDocument(u"A year"_s);
    return {std::move(view), PrintInfo()};
}

/// What a poppler tool says about the file.
QString told(const QString &tool, const QStringList &arguments)
{
    QProcess process;
    process.start(tool, arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        qFatal("%s is missing or failed", qPrintable(tool));
    return QString::fromUtf8(process.readAllStandardOutput());
}

/// A page of the file as a raster, on which the report's points are looked up.
struct Page
{
    Page(const QString &pdf, int number, const QRectF &ofReport) : band(ofReport)
    {
        const QString to = pdf + QString::number(number);
        told(u"pdftoppm"_s,
             {u"-r"_s, u"288"_s, u"-singlefile"_s, u"-png"_s, u"-f"_s, QString::number(number), pdf, to});
        image.load(to + u".png"_s);
    }

    QRect pixels(const QRectF &rect) const
    {
        const QRectF paper = rect.translated(QPointF(margin, margin) - band.topLeft());
        return QRectF(paper.topLeft() * zoom, paper.size() * zoom).toRect();
    }
    QColor at(const QPointF &point) const
    {
        return image.pixelColor(pixels(QRectF(point, QSizeF())).topLeft());
    }
    /// The least rectangle round all that is dark there.
    QRectF ink(const QRectF &rect) const
    {
        QRect ink;
        const QRect searched = pixels(rect) & image.rect();
        for (int y = searched.top(); y <= searched.bottom(); ++y)
            for (int x = searched.left(); x <= searched.right(); ++x)
                if (qGray(image.pixel(x, y)) < 128)
                    ink |= QRect(x, y, 1, 1);
        const QPointF origin = pixels(band).topLeft() / qreal(zoom) - band.topLeft();
        return QRectF(QPointF(ink.topLeft()) / zoom - origin, QSizeF(ink.size()) / zoom);
    }

    static constexpr int zoom = 4;
    static constexpr int margin = 18;
    QImage image;
    QRectF band;
};

/// A PDF writer whose pages run out.
struct ShortOfPaper : QPdfWriter
{
    using QPdfWriter::QPdfWriter;
    bool newPage() override { return --sheets > 0 && QPdfWriter::newPage(); }

    int sheets = 2;
};

} // namespace

class PrintOperationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFileHasEveryGoalInOrderOnTheCountedPages()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"report.pdf"_s);
        PrintOperation operation = operationWithGoals();
        QPdfWriter writer(path);
        writer.setPageLayout({QPageSize(QPageSize::Letter), QPageLayout::Portrait, {18, 18, 18, 18}});
        QVERIFY(!operation.runOn(writer));

        const QString info = told(u"pdfinfo"_s, {path});
        const qint64 pages = operation.view().countPages();
        QVERIFY2(info.contains(QRegularExpression(u"Pages: +%1\n"_s.arg(pages))), qPrintable(info));
        QVERIFY2(info.contains(u"612 x 792 pts (letter)"_s), qPrintable(info));
        QVERIFY(pages > 3);

        const QString text = told(u"pdftotext"_s, {u"-raw"_s, path, u"-"_s});
        qsizetype at = 0;
        for (int goal = 0; goal < goalCount; ++goal) {
            const qsizetype found = text.indexOf(u"office%1."_s.arg(goal), at);
            QVERIFY2(found >= at, qPrintable(u"goal %1 is missing or too early"_s.arg(goal)));
            at = found;
        }

        for (const QString &font : told(u"pdffonts"_s, {path}).split(u'\n', Qt::SkipEmptyParts).mid(2))
            QCOMPARE(font.simplified().section(u' ', -5, -5), u"yes"_s); // is in the file

        // Every goal has a picture; each of the two is in the file once, without loss and fine enough.
        const QStringList pictures =
            told(u"pdfimages"_s, {u"-list"_s, path}).split(u'\n', Qt::SkipEmptyParts).mid(2);
        QSet<QString> objects;
        for (const QString &picture : pictures) {
            const QStringList columns = picture.simplified().split(u' ');
            QVERIFY2(columns[8] == u"image" && columns[12].toInt() >= 500, qPrintable(picture));
            objects.insert(columns[10]);
        }
        QCOMPARE(objects.size(), 2);
    }

    void aPageOnPaperIsWhatWasLaidOut()
    {
        using Kind = ReportItem::Kind;
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"report.pdf"_s);
        PrintOperation operation = operationWithGoals();
        TVXPrintView &view = operation.view();
        QVERIFY(!saveReportAsPdf(operation, a4, path));
        QVERIFY(told(u"pdfinfo"_s, {path}).contains(QRegularExpression(u"Title: +A year\n"_s)));
        const QStringList slices =
            u"#b699c9 #f5bf39 #95c848 #50afe3 #d75e87 #60d5b9 #e3e380 #e9f439"_s.split(u' ');
        for (int number = 1; number <= 3; ++number) {
            const QRectF band = view.rectForPage(number);
            const Page page(path, number, band);
            QVERIFY(page.ink(QRectF(0, band.top() - Page::margin, 595, Page::margin)).isEmpty());
            QVERIFY(page.ink(QRectF(0, band.bottom(), 595, Page::margin)).isEmpty());
            for (const ReportItem &item : view.layoutOfReport().itemsOnPage(band, view.countPages())) {
                if (!band.contains(item.rect))
                    continue;
                const QPointF centre = item.rect.center();
                const auto beside = [&](qreal radius, qreal more = 0) {
                    const qreal angle = 90 - 45 * item.index - 22.5 - more; // from twelve, clockwise
                    return page.at(centre + QLineF::fromPolar(radius, angle).p2());
                };
                const QRectF ink = page.ink(item.rect.adjusted(0, -4, 0, 4));
                switch (item.kind) {
                case Kind::Slice:
                    for (const qreal more : {-20, 0, 20}) // beyond all values, from edge to edge
                        QCOMPARE(beside(105, more).name(), slices[item.index]);
                    QVERIFY(qGray(beside(105, /*more=*/22.5).rgb()) > 240); // the outline
                    break;
                case Kind::Value: // here an area's value is its index
                    QCOMPARE(item.rect.width() / 2, 11.0 * item.index);
                    if (item.index > 0)
                        QVERIFY(qAbs(beside(item.rect.width() / 2 - 3).green() - 0.7 * 255 -
                                     0.3 * QColor(slices[item.index]).green()) < 3);
                    break;
                case Kind::Name:
                case Kind::NameOnLeft:
                    QVERIFY(qAbs(ink.center().y() - centre.y()) < 1.5);
                    QVERIFY(item.kind == Kind::Name ? ink.left() - item.rect.left() < 3
                                                    : item.rect.right() - ink.right() < 3);
                    break;
                case Kind::CheckboxOff:
                case Kind::CheckboxOn: // of which only this one has a tick in the middle
                    QCOMPARE(page.ink(QRectF(centre - QPointF(2, 2), QSizeF(4, 4))).isEmpty(),
                             item.kind == Kind::CheckboxOff);
                    break;
                case Kind::Rule:
                    QVERIFY(ink.width() > item.rect.width() - 2 && ink.height() >= 1);
                    break;
                default:
                    QVERIFY2(!ink.isEmpty(), qPrintable(item.text));
                }
            }
        }
    }

    void aPrinterPrintsTheChosenPages()
    {
        const QTemporaryDir folder;
        QPrinter printer(QPrinter::HighResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(folder.filePath(u"part.pdf"_s));
        printer.setPrintRange(QPrinter::PageRange);
        printer.setFromTo(2, 3);
        QVERIFY(!operationWithGoals().runOn(printer));
        const QString text = told(u"pdftotext"_s, {u"-raw"_s, printer.outputFileName(), u"-"_s});
        QCOMPARE(text.count(u'\f'), 2);
        QVERIFY(!text.contains(u"A year"_s) && !text.contains(u"office0."_s) &&
                text.contains(u"office60."_s));
    }

    void aDiskThatFillsUpLeavesTheOldFileAlone()
    {
        const QTemporaryDir folder;
        QFile old(folder.filePath(u"kept.pdf"_s));
        QVERIFY(old.open(QIODevice::WriteOnly) && old.write("older report") > 0);
        old.close();
        ::signal(SIGXFSZ, SIG_IGN);
        rlimit before{};
        ::getrlimit(RLIMIT_FSIZE, &before);
        const rlimit small{/*rlim_cur=*/20'000, before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &small);
        PrintOperation operation = operationWithGoals();
        const auto failure = saveReportAsPdf(operation, a4, old.fileName());
        ::setrlimit(RLIMIT_FSIZE, &before);
        QCOMPARE(failure.value_or(u""_s), u"File too large"_s);
        QVERIFY(old.open(QIODevice::ReadOnly));
        QCOMPARE(old.readAll(), QByteArray("older report"));
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList(u"kept.pdf"_s));
    }

    void failuresAreToldWithTheirPage()
    {
        const QTemporaryDir folder;
        PrintOperation operation = operationWithGoals();
        QPdfWriter nowhere(folder.filePath(u"no/such/folder.pdf"_s));
        const auto couldNotBegin = operation.runOn(nowhere);
        QVERIFY(couldNotBegin && couldNotBegin->page == 0);

        ShortOfPaper device(folder.filePath(u"half.pdf"_s));
        const auto stopped = operation.runOn(device);
        QVERIFY(stopped && stopped->page == 3 && stopped->countPages == operation.view().countPages());
    }
};

QTEST_MAIN(PrintOperationTest)
#include "PrintOperationTest.moc"
