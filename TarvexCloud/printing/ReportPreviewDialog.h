#pragma once

#include <memory>
#include <QDialog>

class PrintOperation;
class QLabel;
class QPageLayout;
class ReportPreview;

/// The preview's window: the pages, how large they are shown, on what paper, and what to do with them.
class ReportPreviewDialog : public QDialog
{
    Q_OBJECT
public:
    ReportPreviewDialog(const std::shared_ptr<PrintOperation> &operation, QWidget *parent);

    ReportPreview &preview() const { return *m_preview; }

Q_SIGNALS:
    void pageLayoutChosen(const QPageLayout &layout);
    void printRequested();
    void saveRequested();

private:
    QLayout *makeToolRow();
    void showPage();
    void setUpPage();

    ReportPreview *m_preview;
    QLabel *m_page;
};
