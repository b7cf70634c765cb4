#include "ReportTexts.h"

#include "ElidedLabel.h"

#include <QCoreApplication>
#include <QDir>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QStandardPaths>

namespace ReportTexts {
namespace {
QString tr(const char *text)
{
    return QCoreApplication::translate("ReportTexts", text);
}

// A long name has no blank to wrap at and would widen the window.
QString shortened(const QString &text)
{
    constexpr int averageLetters = 40;
    const QFontMetrics metrics(QGuiApplication::font());
    return metrics.elidedText(singleLineOf(text), Qt::ElideMiddle,
                              averageLetters * metrics.averageCharWidth());
}

QString folderOf(const QString &path)
{
    const QString folder = QFileInfo(path).absolutePath();
    const QString home = QDir::homePath();
    const bool isBelowHome = folder == home || folder.startsWith(home + u'/');
    if (folder != home && folder == QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation))
        return QDir(folder).dirName();
    return QDir::toNativeSeparators(isBelowHome ? u'~' + folder.sliced(home.size()) : folder);
}

QString withWarning(const QString &sentence, bool lacksGoals)
{
    return lacksGoals ? sentence + u' ' + withoutGoals() : sentence;
}
} // namespace

QString withoutGoals()
{
    return tr("The goals could not be loaded, so the report shows none.");
}

QString saved(const QString &path, bool lacksGoals)
{
    const QString file = shortened(QFileInfo(path).fileName());
    return withWarning(tr("The report was saved as “%1” in %2.").arg(file, shortened(folderOf(path))),
                       lacksGoals);
}

QString printed(const QString &printer, bool lacksGoals)
{
    return withWarning(tr("The report was sent to the printer “%1”.").arg(shortened(printer)), lacksGoals);
}
} // namespace ReportTexts
