#include "UserManual.h"

#include <array>
#include <QCoreApplication>
#include <QDir>

using namespace Qt::StringLiterals;

namespace {

constexpr std::array folders = {
#ifdef Q_OS_MACOS
    "../Resources/manual"_L1,
#else
    "../share/doc/tarvex-cloud/manual"_L1,
#endif
    "../../manual"_L1, // beside the folders that everything is built in
};

QString tr(const char *text)
{
    return QCoreApplication::translate("UserManual", text);
}

} // namespace

QString UserManual::firstPage(const QDir &programFolder)
{
    const auto pageIn = [&](QLatin1StringView folder) {
        return QDir::cleanPath(programFolder.absoluteFilePath(folder + "/index.html"_L1));
    };
    for (const QLatin1StringView folder : folders)
        if (QFileInfo::exists(pageIn(folder)))
            return pageIn(folder);
    return pageIn(folders.front());
}

QString UserManual::notShown(const QString &page)
{
    const QString path = QDir::toNativeSeparators(page);
    if (!QFileInfo::exists(page))
        return tr("The manual is not installed. Its first page should be this file:\n\n%1").arg(path);
    return tr("The manual could not be opened: no web browser was found. Its first page is this file:\n\n%1")
        .arg(path);
}
