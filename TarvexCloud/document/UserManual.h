#pragma once

#include <QString>

class QDir;

/// The manual that comes with the client.
namespace UserManual {

/// The path of its first page, seen from the folder of the program: of an installed one or of one in its
/// build folder. If there is no such file, the path is where an installed program has it.
QString firstPage(const QDir &programFolder);

/// What the user is told when that page could not be shown.
QString notShown(const QString &page);

} // namespace UserManual
