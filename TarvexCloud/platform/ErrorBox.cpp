#include "ErrorBox.h"

#include <algorithm>
#include <QApplication>
#include <QMessageBox>

namespace {

/// The window that the user is working in or, while that is one of another program, one that waits for them.
QWidget *windowInUse()
{
    if (QWidget *const active = QApplication::activeWindow())
        return active;
    if (QWidget *const modal = QApplication::activeModalWidget())
        return modal;
    const QWidgetList windows = QApplication::topLevelWidgets();
    const auto shown = std::find_if(windows.begin(), windows.end(), [](const QWidget *window) {
        return window->isVisible() && window->windowType() == Qt::Window;
    });
    return shown == windows.end() ? nullptr : *shown;
}

} // namespace

void showErrorBox(const QString &description)
{
    QMessageBox box(QMessageBox::Warning, QCoreApplication::translate("Alert", "Tarvex Cloud"), description,
                    QMessageBox::NoButton, windowInUse());
    box.addButton(QCoreApplication::translate("Alert", "Close"), QMessageBox::AcceptRole);
    box.setTextFormat(Qt::PlainText);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    box.setWindowModality(Qt::ApplicationModal);
    box.exec();
}
