#pragma once

#include <functional>
#include <memory>
#include <QDir>
#include <QPageRanges>
#include <QPointer>

class PrintOperation;
class QPrinter;
class ReportPreviewDialog;
struct PrintInfo;

/// The dialogs through which one report reaches the screen, paper or a file. They stand on a window or, once
/// the preview is up, on the preview. What fails is told, and after a failed save the file is asked for
/// again.
class ReportDialogs : public QObject
{
    Q_OBJECT
public:
    /// Tells the user what failed and returns once that is dismissed.
    using ErrorTeller = std::function<void(const QString &message)>;

    /// The print info takes up the paper that the user chooses and must outlive the dialogs; so must what the
    /// teller uses. File dialogs begin in `folder`. The window owns the dialogs.
    ReportDialogs(const std::shared_ptr<PrintOperation> &operation, PrintInfo &printInfo, const QDir &folder,
                  const ErrorTeller &tellError, QWidget *window);

    void preview();
    void print() { askForPrinter(m_window); }
    void saveAsPdf() { askForFile(m_window); }
    /// Prints as the print dialog has set the printer up: on it, or into a file.
    void printOn(QPrinter &printer, QWidget *asking);

Q_SIGNALS:
    /// Everything went to that printer.
    void printed(const QString &printer);
    void saved(const QString &path);

private:
    void askForPrinter(QWidget *asking);
    void askForFile(QWidget *asking, const QString &typedPath = {}, const QPageRanges &pages = {});
    void writePdf(QWidget *asking, const QString &path, const QPageRanges &pages);
    void tell(const QString &message) const;

    std::shared_ptr<PrintOperation> m_operation;
    PrintInfo &m_printInfo;
    QDir m_folder;
    ErrorTeller m_tellError;
    QWidget *m_window;
    QPointer<ReportPreviewDialog> m_preview;
};
