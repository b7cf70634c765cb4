#include "AlertPresenter.h"

#include <QApplication>
#include <QMessageBox>

void MessageBoxAlertPresenter::showError(const QString &description)
{
    QMessageBox box(QMessageBox::Warning, QString(), description, QMessageBox::Close,
                    QApplication::activeWindow());
    box.setTextFormat(Qt::PlainText);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    box.setWindowModality(Qt::ApplicationModal);
    box.exec();
}
