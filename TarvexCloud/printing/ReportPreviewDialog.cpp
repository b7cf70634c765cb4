#include "ReportPreviewDialog.h"

#include "ReportPreview.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPageSetupDialog>
#include <QPrinter>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

constexpr QSize roomForAPage(760, 820);
constexpr qreal shareOfScreen = 0.85;
constexpr qreal zoomStep = 1.25;
constexpr int margin = 12;
constexpr int spacing = 8;

ReportPreviewDialog::ReportPreviewDialog(const std::shared_ptr<PrintOperation> &operation, QWidget *parent)
    : QDialog(parent), m_preview(new ReportPreview(operation)), m_page(new QLabel)
{
    setWindowTitle(tr("Print Preview"));
    resize(roomForAPage.boundedTo(screen()->availableSize() * shareOfScreen));

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    QPushButton *save = buttons->addButton(tr("&Save as PDF…"), QDialogButtonBox::ActionRole);
    QPushButton *print = buttons->addButton(tr("&Print…"), QDialogButtonBox::ActionRole);
    connect(save, &QPushButton::clicked, this, &ReportPreviewDialog::saveRequested);
    connect(print, &QPushButton::clicked, this, &ReportPreviewDialog::printRequested);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_preview, &ReportPreview::currentPageChanged, this, &ReportPreviewDialog::showPage);

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, margin, 0, margin);
    column->setSpacing(margin);
    column->addLayout(makeToolRow());
    column->addWidget(m_preview);
    auto *bottom = new QHBoxLayout;
    bottom->setContentsMargins(margin, 0, margin, 0);
    bottom->addWidget(buttons);
    column->addLayout(bottom);
    print->setDefault(true); // which counts only for a button that is in the dialog already
    m_preview->setFocus();
    showPage();
}

QLayout *ReportPreviewDialog::makeToolRow()
{
    auto *row = new QHBoxLayout;
    row->setContentsMargins(margin, 0, margin, 0);
    row->setSpacing(spacing);
    const auto add = [&](const QString &text, const QKeySequence &shortcut, const auto &action) {
        auto *button = new QPushButton(text);
        if (!shortcut.isEmpty()) // an empty one would take away the letter in the text
            button->setShortcut(shortcut);
        connect(button, &QPushButton::clicked, this, action);
        row->addWidget(button);
    };
    m_page->setTextFormat(Qt::PlainText);
    row->addWidget(m_page);
    row->addStretch();
    add(tr("Zoom Out"), QKeySequence::ZoomOut, [this] { m_preview->zoomBy(1 / zoomStep); });
    add(tr("Zoom In"), QKeySequence::ZoomIn, [this] { m_preview->zoomBy(zoomStep); });
    add(tr("Fit &Width"), QKeySequence(), [this] { m_preview->fitWidth(); });
    add(tr("&Fit Page"), QKeySequence(), [this] { m_preview->fitPage(); });
    add(tr("Page Se&tup…"), QKeySequence(), [this] { setUpPage(); });
    return row;
}

void ReportPreviewDialog::showPage()
{
    m_page->setText(tr("Page %1 of %2").arg(m_preview->currentPage()).arg(m_preview->countPages()));
}

void ReportPreviewDialog::setUpPage()
{
    const auto printer = std::make_shared<QPrinter>();
    printer->setPageLayout(m_preview->pageLayout());
    auto *dialog = new QPageSetupDialog(printer.get(), this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, [this, printer] {
        m_preview->setPageLayout(printer->pageLayout());
        Q_EMIT pageLayoutChosen(printer->pageLayout());
    });
    dialog->open();
}
