#include "DocumentController.h"
#include "DocumentWindow.h"
#include "PrintOperation.h"
#include "ReportDialogs.h"
#include "ReportTexts.h"
#include "TarvexDocument.h"
#include "TarvexView.h"
#include "TVXAlert.h"
#include "TVXManager.h"

namespace {
constexpr qreal margin = 18; // what most printers need; the report's columns leave no room for more

// Paper is a matter of the country.
QPageLayout usualPaper()
{
    const bool inches = QLocale::system().measurementSystem() == QLocale::ImperialUSSystem;
    return {QPageSize(inches ? QPageSize::Letter : QPageSize::A4), QPageLayout::Portrait,
            QMarginsF(margin, margin, margin, margin)};
}
} // namespace

std::shared_ptr<PrintOperation> TarvexDocument::printOperationWithSettings(const QVariantMap &, QString *)
{
    const TVXSetsPtr set = selectedSet();
    if (!set)
        return {};
    TVXManager manager(m_controller.exchange(), m_controller.alert());
    const auto goals = std::make_shared<TVXGoalList>();
    const bool hasGoals =
        manager.getGoalsForPrintUsingLogin(m_loginUserName, m_loginPassword, set->idOfSets(), *goals);

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
    auto operation = std::make_shared<PrintOperation>(std::move(view), m_printInfo);
    operation->setLacksGoals(!hasGoals);
    return operation;
}

void TarvexDocument::makeReport(void (ReportDialogs::*next)())
{
    if (!m_window || !mayOpenSheet() || !selectedSet())
        return;
    const auto action = [&] {
        std::shared_ptr<PrintOperation> operation;
        whileSaying(tr("Getting the goals for the report…"), /*requests=*/1,
                    [&] { operation = printOperationWithSettings(/*settings=*/{}); });
        if (operation->lacksGoals())
            tell(ReportTexts::withoutGoals());
        (makeReportDialogs(operation)->*next)();
    };
    m_controller.runAction(action, [this] { tellIncompleteAnswer(); });
}

ReportDialogs *TarvexDocument::makeReportDialogs(const std::shared_ptr<PrintOperation> &operation)
{
    delete m_reportDialogs;
    auto *dialogs = new ReportDialogs(
        operation, m_printInfo, DocumentController::folderOfFiles(),
        [this](const QString &message) { m_controller.alert().showError(message); }, window());
    const bool lacksGoals = operation->lacksGoals();
    connect(dialogs, &ReportDialogs::saved, this,
            [this, lacksGoals](const QString &path) { tell(ReportTexts::saved(path, lacksGoals)); });
    connect(dialogs, &ReportDialogs::printed, this,
            [this, lacksGoals](const QString &printer) { tell(ReportTexts::printed(printer, lacksGoals)); });
    m_reportDialogs = dialogs;
    return dialogs;
}

void TarvexDocument::previewPrint()
{
    makeReport(&ReportDialogs::preview);
}

void TarvexDocument::print()
{
    makeReport(&ReportDialogs::print);
}

void TarvexDocument::saveAsPdf()
{
    makeReport(&ReportDialogs::saveAsPdf);
}
