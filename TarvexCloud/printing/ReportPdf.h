#pragma once

#include <optional>
#include <QPageLayout>
#include <QPageRanges>
#include <QString>

class PrintOperation;

/// Writes the chosen pages of the report, or with no choice all, to a file, which is replaced only once they
/// have all been written.
///
/// Returns nothing when all went well, else the system's words for why not.
std::optional<QString> saveReportAsPdf(PrintOperation &operation, const QPageLayout &pageLayout,
                                       const QString &path, const QPageRanges &pages = {});
