#pragma once

#include <QString>

/// What the window says of a report. One that shows no goals, since they could not be loaded, keeps saying
/// so.
namespace ReportTexts {
QString withoutGoals();
/// Names file and folder, both bounded in length; the folder as a person would: "Documents", "~/Reports".
QString saved(const QString &path, bool lacksGoals);
QString printed(const QString &printer, bool lacksGoals);
} // namespace ReportTexts
