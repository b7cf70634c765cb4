#include "ErrorBox.h"

#include <QApplication>
#include <QMessageBox>

void showErrorBox(const QString &description)
{
    QMessageBox box(QMessageBox::Warning, QCoreApplication::translate("Alert", "Tarvex Cloud"), description,
                    QMessageBox::NoButton, QApplication::activeWindow());
    box.addButton(QCoreApplication::translate("Alert", "Close"), QMessageBox::AcceptRole);
    box.setTextFormat(Qt::PlainText);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    box.setWindowModality(Qt::ApplicationModal);
    box.exec();
}
