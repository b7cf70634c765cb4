#pragma once

#include <QString>

/// Shows one failure to the user, over whichever window they are working in, and returns once it is
/// dismissed. The text is shown as it stands, never as markup.
void showErrorBox(const QString &description);
