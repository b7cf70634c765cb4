#include "DocumentController.h"
#include "ElidedLabel.h"
#include "PrintOperation.h"
#include "ReportPdf.h"
#include "ReportPreview.h"
#include "ReportPreviewDialog.h"
#include "TarvexDocument.h"
#include "TarvexView.h"
#include "TVXAlert.h"
#include "TVXManager.h"

#include <QApplication>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QScopeGuard>

using namespace Qt::StringLiterals;

namespace {
constexpr qreal margin = 18; // what most printers need; the report's columns leave no room for more

// Paper is a matter of the country.
QPageLayout usualPaper()
{
    const bool inches = QLocale::system().measurementSystem() == QLocale::ImperialUSSystem;
    return {QPageSize(inches ? QPageSize::Letter : QPageSize::A4), QPageLayout::Portrait,
            QMarginsF(margin, margin, margin, margin)};
}

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

std::shared_ptr<PrintOperation> TarvexDocument::printOperationWithSettings(const QVariantMap &, QString *)
{
    const TVXSetsPtr set = selectedSet();
    if (!set)
        return {};
    TVXManager manager(m_controller.exchange(), m_controller.alert());
    const auto goals = std::make_shared<TVXGoalList>();
    m_isReportWithoutGoals =
        !manager.getGoalsForPrintUsingLogin(m_loginUserName, m_loginPassword, set->idOfSets(), *goals);

    auto view = std::make_unique<TVXPrintView>();
    view->setProject(m_wheelView->mainData());
    view->setPiecesOfWheel(m_wheelView->piecesOfWheel());
    view->setTitleOfDocument(set->name());
    view->project()->setGoals(goals);

    if (!m_printInfo.pageLayout.isValid())
        m_printInfo.pageLayout = usualPaper();
    m_printInfo.printAllPages = true;
    m_printInfo.horizontalPagination = PrintInfo::Pagination::Fit;
    m_printInfo.verticalPagination = PrintInfo::Pagination::Fit;
    return std::make_shared<PrintOperation>(std::move(view), m_printInfo);
}

void TarvexDocument::makePrintOperation(
    const std::function<void(const std::shared_ptr<PrintOperation> &)> &next)
{
    if (!m_window || !mayOpenSheet() || !selectedSet())
        return;
    const auto action = [&] {
        std::shared_ptr<PrintOperation> operation;
        whileSaying(tr("Getting the goals for the report…"), /*requests=*/1,
                    [&] { operation = printOperationWithSettings(/*settings=*/{}); });
        if (operation && m_isReportWithoutGoals)
            tell(tr("The goals could not be loaded, so the report shows none."));
        if (operation)
            next(operation);
    };
    m_controller.runAction(action, [this] { tellIncompleteAnswer(); });
}

void TarvexDocument::previewPrint()
{
    makePrintOperation([this](const std::shared_ptr<PrintOperation> &operation) {
        auto *dialog = new ReportPreviewDialog(operation, window());
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        connect(dialog, &ReportPreviewDialog::pageLayoutChosen, this,
                [this](const QPageLayout &layout) { m_printInfo.pageLayout = layout; });
        connect(dialog, &ReportPreviewDialog::printRequested, this,
                [this, operation, dialog] { askForPrinter(operation, dialog); });
        connect(dialog, &ReportPreviewDialog::saveRequested, this,
                [this, operation, dialog] { askForFile(operation, dialog); });
        dialog->open();
    });
}

void TarvexDocument::print()
{
    makePrintOperation(
        [this](const std::shared_ptr<PrintOperation> &operation) { askForPrinter(operation, window()); });
}

void TarvexDocument::saveAsPdf()
{
    makePrintOperation(
        [this](const std::shared_ptr<PrintOperation> &operation) { askForFile(operation, window()); });
}

void TarvexDocument::askForPrinter(const std::shared_ptr<PrintOperation> &operation, QWidget *window)
{
    if (QPrinterInfo::availablePrinterNames().isEmpty()) {
        m_controller.alert().showError(tr(
            "No printer is installed on this computer.\n\nChoose Save as PDF to keep the report as a file."));
        return;
    }
    const auto printer = std::make_shared<QPrinter>(QPrinter::HighResolution);
    printer->setPageLayout(m_printInfo.pageLayout);
    printer->setDocName(operation->view().titleOfDocument());
    if (operation->printInfo().printAllPages)
        printer->setPrintRange(QPrinter::AllPages);
    auto *dialog = new QPrintDialog(printer.get(), window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setOptions(QAbstractPrintDialog::PrintToFile | QAbstractPrintDialog::PrintPageRange |
                       QAbstractPrintDialog::PrintShowPageSize | QAbstractPrintDialog::PrintCollateCopies);
    const auto chosen = [this, printer, operation, asking = QPointer(window)] {
        printOn(*printer, operation, asking);
        // The operation is now laid out for the printer's paper.
        if (auto *preview = asking ? asking->findChild<ReportPreview *>() : nullptr)
            preview->setPageLayout(m_printInfo.pageLayout);
    };
    connect(dialog, &QDialog::accepted, this, chosen);
    dialog->open();
}

void TarvexDocument::printOn(QPrinter &printer, const std::shared_ptr<PrintOperation> &operation,
                             QWidget *window)
{
    m_printInfo.pageLayout = printer.pageLayout();
    if (printer.outputFormat() == QPrinter::PdfFormat) {
        const bool isPart = printer.printRange() == QPrinter::PageRange;
        writePdf(operation, window, printer.outputFileName(), isPart ? printer.pageRanges() : QPageRanges());
        return;
    }
    const auto failure = [&] {
        const auto waiting = waitCursor();
        return operation->runOn(printer);
    }();
    if (!failure)
        return;
    m_controller.alert().showError(
        failure->page == 0 ? tr("The report could not be printed: the printer \"%1\" does not take it.")
                                 .arg(printer.printerName())
                           : tr("Printing stopped at page %1 of %2: the printer \"%3\" takes no more pages.")
                                 .arg(failure->page)
                                 .arg(failure->countPages)
                                 .arg(printer.printerName()));
}

void TarvexDocument::askForFile(const std::shared_ptr<PrintOperation> &operation, QWidget *window,
                                const QString &typedPath, const QPageRanges &pages)
{
    auto *dialog = new QFileDialog(window, tr("Save as PDF"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setNameFilter(tr("PDF files (*.pdf)"));
    dialog->setDefaultSuffix(u"pdf"_s);
    dialog->setDirectory(DocumentController::folderOfFiles());
    dialog->selectFile(typedPath.isEmpty() ? fileNameFor(operation->view().titleOfDocument()) : typedPath);
    auto *field = dialog->findChild<QLineEdit *>(u"fileNameEdit"_s); // a native dialog has none
    if (field && !typedPath.isEmpty() && !QFileInfo(typedPath).dir().exists())
        field->setText(typedPath); // which the toolkit shows as if it were relative
    const auto chosen = [this, dialog, operation, pages, asking = QPointer(window)](const QString &path) {
        dialog->hide(); // which the toolkit does only afterwards; another one may follow it
        writePdf(operation, asking, path, pages);
    };
    connect(dialog, &QFileDialog::fileSelected, this, chosen);
    dialog->open();
}

void TarvexDocument::writePdf(const std::shared_ptr<PrintOperation> &operation, QWidget *window,
                              const QString &path, const QPageRanges &pages)
{
    const std::optional<QString> failure = [&] {
        const auto waiting = waitCursor();
        return saveReportAsPdf(*operation, m_printInfo.pageLayout, path, pages);
    }();
    if (!failure) {
        showSaved(path);
        return;
    }
    const QPointer asking(window); // may be gone after the alert, and the document with it
    m_controller.alert().showError(
        tr("The report could not be saved as \"%1\".\n\n%2.").arg(QDir::toNativeSeparators(path), *failure));
    if (asking && asking->isVisible())
        askForFile(operation, asking, path, pages);
}

void TarvexDocument::showSaved(const QString &path)
{
    const QString name = singleLineOf(QFileInfo(path).fileName());
    tell(tr("The report was saved as \u201C%1\u201D.").arg(name));
}
