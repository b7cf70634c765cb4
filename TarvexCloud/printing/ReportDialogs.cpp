#include "ReportDialogs.h"

#include "PrintOperation.h"
#include "ReportPdf.h"
#include "ReportPreview.h"
#include "ReportPreviewDialog.h"

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QScopeGuard>

using namespace Qt::StringLiterals;

namespace {
// A name that any file system takes, and not a hidden file.
QString fileNameFor(const QString &title)
{
    constexpr qsizetype longest = 60;
    QString name = title.left(longest).simplified();
    for (QChar &c : name)
        if (!c.isPrint() || u"/\\:*?\"<>|"_s.contains(c) || c.isSurrogate())
            c = u'-';
    while (name.startsWith(u'.'))
        name.remove(0, 1);
    return (name.isEmpty() ? u"Report"_s : name) + u".pdf"_s;
}

auto waitCursor()
{
    QApplication::setOverrideCursor(Qt::WaitCursor);
    return qScopeGuard([] { QApplication::restoreOverrideCursor(); });
}
} // namespace

ReportDialogs::ReportDialogs(const std::shared_ptr<PrintOperation> &operation, PrintInfo &printInfo,
                             const QDir &folder, const ErrorTeller &tellError, QWidget *window)
    : QObject(window), m_operation(operation), m_printInfo(printInfo), m_folder(folder),
      m_tellError(tellError), m_window(window)
{
}

void ReportDialogs::preview()
{
    m_preview = new ReportPreviewDialog(m_operation, m_window);
    m_preview->setAttribute(Qt::WA_DeleteOnClose);
    connect(m_preview, &ReportPreviewDialog::pageLayoutChosen, this,
            [this](const QPageLayout &layout) { m_printInfo.pageLayout = layout; });
    connect(m_preview, &ReportPreviewDialog::printRequested, this, [this] { askForPrinter(m_preview); });
    connect(m_preview, &ReportPreviewDialog::saveRequested, this, [this] { askForFile(m_preview); });
    m_preview->open();
}

void ReportDialogs::askForPrinter(QWidget *asking)
{
    if (QPrinterInfo::availablePrinterNames().isEmpty()) {
        tell(tr(
            "No printer is installed on this computer.\n\nChoose Save as PDF to keep the report as a file."));
        return;
    }
    const auto printer = std::make_shared<QPrinter>(QPrinter::HighResolution);
    printer->setPageLayout(m_printInfo.pageLayout);
    printer->setDocName(m_operation->view().titleOfDocument());
    if (m_operation->printInfo().printAllPages)
        printer->setPrintRange(QPrinter::AllPages);
    auto *dialog = new QPrintDialog(printer.get(), asking);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setOptions(QAbstractPrintDialog::PrintToFile | QAbstractPrintDialog::PrintPageRange |
                       QAbstractPrintDialog::PrintShowPageSize | QAbstractPrintDialog::PrintCollateCopies);
    connect(dialog, &QDialog::accepted, this,
            [this, printer, guarded = QPointer(asking)] { printOn(*printer, guarded); });
    dialog->open();
}

void ReportDialogs::printOn(QPrinter &printer, QWidget *asking)
{
    m_printInfo.pageLayout = printer.pageLayout();
    if (m_preview) // shows the report on the paper that it is laid out for from now on
        m_preview->preview().setPageLayout(m_printInfo.pageLayout);
    const bool isPart = printer.printRange() == QPrinter::PageRange;
    const QPageRanges pages = isPart ? printer.pageRanges() : QPageRanges();
    const qint64 lastPage = m_operation->layOutFor(m_printInfo.pageLayout).length;
    if (pages.firstPage() > lastPage) { // the dialog takes any number
        tell(tr("None of the chosen pages is in the report: on this paper, its last page is page %1.")
                 .arg(lastPage));
        return;
    }
    if (printer.outputFormat() == QPrinter::PdfFormat) {
        writePdf(asking, printer.outputFileName(), pages);
        return;
    }
    const auto failure = [&] {
        const auto waiting = waitCursor();
        return m_operation->runOn(printer);
    }();
    if (!failure)
        Q_EMIT printed(printer.printerName());
    else if (failure->page == 0)
        tell(tr("The report could not be printed: the printer \"%1\" does not take it.")
                 .arg(printer.printerName()));
    else
        tell(tr("Printing stopped at page %1 of %2: the printer \"%3\" takes no more pages.")
                 .arg(failure->page)
                 .arg(failure->countPages)
                 .arg(printer.printerName()));
}

void ReportDialogs::askForFile(QWidget *asking, const QString &typedPath, const QPageRanges &pages)
{
    auto *dialog = new QFileDialog(asking, tr("Save as PDF"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setNameFilter(tr("PDF files (*.pdf)"));
    dialog->setDefaultSuffix(u"pdf"_s);
    dialog->setDirectory(m_folder);
    dialog->selectFile(typedPath.isEmpty() ? fileNameFor(m_operation->view().titleOfDocument()) : typedPath);
    auto *field = dialog->findChild<QLineEdit *>(u"fileNameEdit"_s); // a native dialog has none
    if (field && !typedPath.isEmpty() && !QFileInfo(typedPath).dir().exists())
        field->setText(typedPath); // which the toolkit shows as if it were relative
    const auto chosen = [this, dialog, pages, guarded = QPointer(asking)](const QString &path) {
        dialog->hide(); // which the toolkit does only afterwards; another one may follow it
        writePdf(guarded, path, pages);
    };
    connect(dialog, &QFileDialog::fileSelected, this, chosen);
    dialog->open();
}

void ReportDialogs::writePdf(QWidget *asking, const QString &path, const QPageRanges &pages)
{
    const std::optional<QString> failure = [&] {
        const auto waiting = waitCursor();
        return saveReportAsPdf(*m_operation, m_printInfo.pageLayout, path, pages);
    }();
    if (!failure) {
        Q_EMIT saved(path);
        return;
    }
    const QPointer self(this);
    const QPointer guarded(asking);
    tell(tr("The report could not be saved as \"%1\".\n\n%2.").arg(QDir::toNativeSeparators(path), *failure));
    if (self && guarded && guarded->isVisible())
        askForFile(guarded, path, pages);
}

// Through a copy: the document may be closed under the message, and these dialogs with it.
void ReportDialogs::tell(const QString &message) const
{
    const ErrorTeller tellError = m_tellError;
    tellError(message);
}
