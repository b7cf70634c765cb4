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

/// A PDF writer whose pages run out.
class ShortOfPaper : public QPdfWriter
{
public:
    ShortOfPaper(const QString &path, int sheets) : QPdfWriter(path), m_sheets(sheets) {}

    bool newPage() override { return --m_sheets > 0 && QPdfWriter::newPage(); }

private:
    int m_sheets;
};

} // namespace

class PrintOperationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFileHasEveryGoalInOrderOnTheCountedPages_data()
    {
        QTest::addColumn<QPageSize::PageSizeId>("paper");
        QTest::addColumn<QString>("size");
        QTest::newRow("A4") << QPageSize::A4 << u"595 x 842 pts (A4)"_s;
        QTest::newRow("Letter") << QPageSize::Letter << u"612 x 792 pts (letter)"_s;
    }
    void aFileHasEveryGoalInOrderOnTheCountedPages()
    {
        QFETCH(QPageSize::PageSizeId, paper);
        QFETCH(QString, size);
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"report.pdf"_s);
        PrintOperation operation = operationWithGoals();
        QPdfWriter writer(path);
        writer.setPageLayout({QPageSize(paper), QPageLayout::Portrait, {18, 18, 18, 18}});
        QVERIFY(!operation.runOn(writer));

        const QString info = told(u"pdfinfo"_s, {path});
        const qint64 pages = operation.view().countPages();
        QVERIFY2(info.contains(QRegularExpression(u"Pages: +%1\n"_s.arg(pages))), qPrintable(info));
        QVERIFY2(info.contains(size), qPrintable(info));
        QVERIFY(pages > 3);

        const QString text = told(u"pdftotext"_s, {u"-raw"_s, path, u"-"_s});
        qsizetype at = 0;
        for (int goal = 0; goal < goalCount; ++goal) {
            const qsizetype found = text.indexOf(u"office%1."_s.arg(goal), at);
            QVERIFY2(found >= at, qPrintable(u"goal %1 is missing or too early"_s.arg(goal)));
            at = found;
        }

        const QStringList fonts = told(u"pdffonts"_s, {path}).split(u'\n', Qt::SkipEmptyParts).mid(2);
        QVERIFY(fonts.size() >= 2);
        static const QRegularExpression embeddedWithUnicode(u" yes (yes|no) +yes "_s);
        for (const QString &font : fonts)
            QVERIFY2(font.contains(embeddedWithUnicode), qPrintable(font));

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
        const QPageLayout a4(QPageSize(QPageSize::A4), QPageLayout::Portrait, {18, 18, 18, 18});
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

        ShortOfPaper device(folder.filePath(u"half.pdf"_s), /*sheets=*/2);
        const auto stopped = operation.runOn(device);
        QVERIFY(stopped && stopped->page == 3 && stopped->countPages == operation.view().countPages());
    }
};

QTEST_MAIN(PrintOperationTest)
#include "PrintOperationTest.moc"
