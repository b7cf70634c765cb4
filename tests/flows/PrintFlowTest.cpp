#include "Client.h"
#include "PrintOperation.h"
#include "ReportDialogs.h"
#include "ReportPreview.h"
#include "ReportPreviewDialog.h"
#include "ReportTexts.h"

#include <QFileDialog>
#include <QPageSetupDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QProcess>
#include <QScrollBar>
#include <QTemporaryDir>

namespace {

QByteArray goalsAnswer(int count)
{
    QList<QList<QByteArray>> rows;
    for (int goal = 1; goal <= count; ++goal)
        rows.append({QByteArray::number(goal), "Goal" + QByteArray::number(goal) + ".", "5",
                     goal % 3 == 0 ? "y" : "n", QByteArray::number(1 + goal * 8 / (count + 1))});
    return xmlAnswer({"id", "name", "priority", "checked", "area"}, rows);
}

QString textOf(const QString &pdf)
{
    QProcess process;
    process.start(u"pdftotext"_s, {u"-raw"_s, pdf, u"-"_s});
    return process.waitForFinished() ? QString::fromUtf8(process.readAllStandardOutput()) : u""_s;
}

/// Where the toolkit would keep which folders its dialogs showed.
const QTemporaryDir homeFolder;

/// A signed-in client whose set is printed by the menu's commands.
struct PrintingClient : Client
{
    explicit PrintingClient(const QByteArray &goals = goalsAnswer(100), const QByteArray &second = "Second")
    {
        service.answer("get-sets", setsAnswer({setRow("7", "First", "10 20 30 40 50 60 70 80"),
                                               setRow("9", second, "99 99 99 99 99 99 99 6")}));
        service.answer("get-complex-goals-for-sets", goals);
        document = openSignedIn();
    }

    template<typename Dialog>
    Dialog *dialog() const
    {
        return document->window()->findChild<Dialog *>();
    }

    void saveAs(const QString &path) const
    {
        trigger(document, "actionSaveAsPdf");
        QVERIFY(dialog<QFileDialog>());
        Q_EMIT dialog<QFileDialog>()->fileSelected(path);
        dialog<QFileDialog>()->close();
    }

    TarvexDocument *document = nullptr;
};

} // namespace

class PrintFlowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    static void initMain()
    {
        qputenv("HOME", homeFolder.path().toLocal8Bit());
        qputenv("XDG_CONFIG_HOME", homeFolder.filePath(u".config"_s).toLocal8Bit());
    }
    void cleanupTestCase() { QVERIFY(QDir(homeFolder.filePath(u".config"_s)).isEmpty()); }

    void theSelectedSetIsFetchedAndKeptAsAFile()
    {
        const QTemporaryDir folder;
        const PrintingClient client(goalsAnswer(100), "..Second/2");
        client.document->listOfProjects()->selectItemAtIndex(1);
        Client::trigger(client.document, "actionSaveAsPdf");
        auto *dialog = client.dialog<QFileDialog>();
        QCOMPARE(dialog->selectedFiles().value(0).section(u'/', -1), u"Second-2.pdf"_s);
        dialog->setDirectory(folder.path());
        dialog->findChild<QLineEdit *>(u"fileNameEdit"_s)->setText(u"mine"_s);
        QTest::mouseClick(Client::button(dialog, u"Save"_s), Qt::LeftButton);

        const QString text = textOf(folder.filePath(u"mine.pdf"_s));
        QVERIFY(text.startsWith(u"..Second/2\n"_s));
        for (int goal = 1; goal <= 100; ++goal)
            QVERIFY2(text.contains(u"Goal%1.\n"_s.arg(goal)), qPrintable(text));
        QVERIFY(text.contains(u"Health Very Bad 33%"_s));
        QCOMPARE(client.service.bodies().mid(3), {"p1=get-complex-goals-for-sets" + annsDigests + "&p4=9"});
        QCOMPARE(client.document->project()->goals()->size(), 100);
        QVERIFY(client.alert.errors.isEmpty());
        QCOMPARE(Client::guidance(client.document),
                 u"The report was saved as “mine.pdf” in %1."_s.arg(folder.path()));
    }

    void goalsThatDoNotComeLeaveHeadersAndFullPercentages()
    {
        const QTemporaryDir folder;
        const PrintingClient client("Error");
        client.saveAs(folder.filePath(u"bare.pdf"_s));
        const QString text = textOf(folder.filePath(u"bare.pdf"_s));
        QCOMPARE(text.count(u"100%"_s), 8);
        QVERIFY(text.contains(u"Love Good - Excellent 100%"_s));
        const QString warning = u"The goals could not be loaded, so the report shows none."_s;
        QVERIFY(Client::guidance(client.document).startsWith(u"The report was saved"_s));
        QVERIFY(Client::guidance(client.document).endsWith(warning));
        client.document->previewPrint();
        QCOMPARE(Client::guidance(client.document), warning);
    }

    void foldersAreNamedShortly()
    {
        const auto folder = [](const QString &path) {
            return ReportTexts::saved(path, /*lacksGoals=*/false).section(u"” in "_s, 1);
        };
        const QString home = QDir::homePath();
        QCOMPARE(folder(home + u"/a.pdf"_s), u"~."_s);
        QCOMPARE(folder(home + u"/Documents/a.pdf"_s), u"Documents."_s);
        QCOMPARE(folder(home + u"s/a.pdf"_s), home + u"s."_s);
        QVERIFY(folder(u"/long"_s.repeated(90) + u"/a.pdf"_s).size() < 100);
    }

    void withoutASelectedSetNothingIsPrintedOrSaid()
    {
        const PrintingClient client;
        client.document->listOfProjects()->selectItemAtIndex(-1);
        QVERIFY(!client.document->printOperationWithSettings({}));
        client.document->print();
        client.document->previewPrint();
        client.document->saveAsPdf();
        QVERIFY(!client.dialog<ReportPreviewDialog>() && !client.dialog<QFileDialog>());
        client.document->listOfProjects()->selectItemAtIndex(0);
        const QPageLayout paper = client.document->printOperationWithSettings({})->printInfo().pageLayout;
        QCOMPARE(paper.marginsPoints(), QMargins(18, 18, 18, 18));
        const bool usesInches = QLocale::system().measurementSystem() == QLocale::ImperialUSSystem;
        QCOMPARE(paper.pageSize().id(), usesInches ? QPageSize::Letter : QPageSize::A4);
        QCOMPARE(client.service.requests().size(), 4);
        QVERIFY(client.alert.errors.isEmpty());
    }

    void aFileThatCannotBeWrittenIsTold()
    {
        for (const auto &[path, reason] :
             {std::pair(u"/dev/full"_s, u"No space left on device"_s),
              std::pair(u"/no/folder/a.pdf"_s, u"No such file or directory"_s)}) {
            const PrintingClient client;
            client.saveAs(path);
            QCOMPARE(client.alert.errors.size(), 1);
            const QString &told = client.alert.errors[0];
            QVERIFY2(told.contains(path) && told.contains(reason), qPrintable(told));
            QTRY_VERIFY(client.dialog<QFileDialog>() && client.dialog<QFileDialog>()->isVisible()); // anew
            QVERIFY(client.dialog<QFileDialog>()->selectedFiles().value(0).startsWith(path));
        }
    }

    void thePreviewShowsThePagesOneByOneAndSavesThem()
    {
        const QTemporaryDir folder;
        const PrintingClient client;
        Client::trigger(client.document, "actionPrintPreview");
        auto *dialog = client.dialog<ReportPreviewDialog>();
        QVERIFY(dialog);
        ReportPreview &preview = dialog->preview();
        QCOMPARE(preview.countPages(), 3);
        QVERIFY(Client::guidance(client.document).startsWith(u"Click an area"_s)); // no longer of the goals
        QCOMPARE(preview.currentPage(), 1);
        const QImage first = preview.grab().toImage();
        QTest::keyClick(&preview, Qt::Key_End);
        QCOMPARE(preview.currentPage(), 3);
        const QImage last = preview.grab().toImage();
        QVERIFY(last != first);
        int left = 0;
        while (last.pixelColor(left, last.height() / 2) != Qt::white)
            ++left;
        for (int y = 0; y < last.height(); ++y) // the margin
            for (int x = left; x < left + 8; ++x)
                QVERIFY(qGray(last.pixel(x, y)) > 100);
        preview.zoomBy(2);
        const QScrollBar *bar = preview.verticalScrollBar();
        const int length = bar->maximum() + bar->pageStep();
        dialog->resize(dialog->width() + 80, dialog->height());
        QCOMPARE(bar->maximum() + bar->pageStep(), length); // the zoom is the user's

        Client::button(dialog, u"Page Setup…"_s)->click();
        auto *setup = dialog->findChild<QPageSetupDialog *>();
        setup->printer()->setPageSize(QPageSize(QPageSize::A5));
        Q_EMIT setup->accepted();
        setup->close();
        QVERIFY(preview.countPages() > 3);

        client.document->print(); // the set's window is taken
        client.document->renameAreas();
        QVERIFY(!client.document->wndRenameAreas()->isVisible());
        QCOMPARE(client.service.requests().size(), 4);

        QTest::mouseClick(Client::button(dialog, u"Save as PDF…"_s), Qt::LeftButton);
        Q_EMIT client.dialog<QFileDialog>()->fileSelected(folder.filePath(u"seen.pdf"_s));
        QCOMPARE(textOf(folder.filePath(u"seen.pdf"_s)).count(u'\f'), preview.countPages());
    }

    void pagesBehindTheLastOneAreRefused()
    {
        const PrintingClient client;
        const QTemporaryDir folder;
        Client::trigger(client.document, "actionPrintPreview");
        QPrinter printer;
        printer.setOutputFileName(folder.filePath(u"kept.pdf"_s));
        printer.setPrintRange(QPrinter::PageRange);
        for (const int first : {2, 99}) {
            printer.setFromTo(first, 100);
            client.document->window()->findChild<ReportDialogs *>()->printOn(printer, /*asking=*/nullptr);
        }
        QVERIFY(textOf(printer.outputFileName()).contains(u"Goal100."_s));
        QCOMPARE(client.alert.errors.size(), 1);
        QVERIFY(client.alert.errors[0].startsWith(u"None of the chosen pages"_s));
    }

    void aComputerWithoutPrinterIsTold()
    {
        if (!QPrinterInfo::availablePrinterNames().isEmpty())
            QSKIP("this computer has a printer");
        const PrintingClient client;
        Client::trigger(client.document, "actionPrint");
        QCOMPARE(client.alert.errors.size(), 1);
        QVERIFY(client.alert.errors[0].startsWith(u"No printer is installed"_s));
    }
};

QTEST_MAIN(PrintFlowTest)
#include "PrintFlowTest.moc"
