#include "ReportPdf.h"

#include "PrintOperation.h"

#include <QFileInfo>
#include <QPdfWriter>
#include <QSaveFile>

using namespace Qt::StringLiterals;

namespace {
std::optional<QString> write(PrintOperation &operation, const QPageLayout &pageLayout,
                             const QPageRanges &pages, QFileDevice &file)
{
    if (!file.open(QIODevice::WriteOnly))
        return file.errorString();
    QPdfWriter writer(&file);
    writer.setPageLayout(pageLayout);
    writer.setPageRanges(pages);
    writer.setTitle(operation.view().titleOfDocument());
    writer.setCreator(u"Tarvex Cloud"_s);
    // The writer ignores whether its bytes could be written; the file keeps the error.
    if (operation.runOn(writer) || !file.flush()) {
        file.flush(); // a write that was cut short has no reason yet; the one after it is told
        return file.errorString();
    }
    return std::nullopt;
}
} // namespace

std::optional<QString> saveReportAsPdf(PrintOperation &operation, const QPageLayout &pageLayout,
                                       const QString &path, const QPageRanges &pages)
{
    const QFileInfo info(path);
    if (info.exists() && !info.isFile()) { // a device, say, must not be replaced by a file
        QFile device(path);
        return write(operation, pageLayout, pages, device);
    }
    QSaveFile file(path);
    std::optional<QString> failure = write(operation, pageLayout, pages, file);
    if (!failure && !file.commit())
        failure = file.errorString();
    return failure;
}
