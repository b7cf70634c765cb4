#include "ApplicationMenuBar.h"

#include "AboutBox.h"
#include "DocumentController.h"
#include "DocumentWindow.h"

ApplicationMenuBar::ApplicationMenuBar(DocumentController &controller)
{
    QMenu *file = addMenu(tr("&File"));
    file->addAction(tr("&New"), QKeySequence::New, &controller, &DocumentController::newDocument);
    file->addAction(tr("&Open…"), QKeySequence::Open, &controller, &DocumentController::openDocument);
    QAction *quit = file->addAction(tr("&Quit"), QKeySequence::Quit, &controller, &DocumentController::quit);
    quit->setMenuRole(QAction::QuitRole);
    QMenu *help = addMenu(tr("&Help"));
    help->addAction(tr("Tarvex Cloud &Help"), &controller, &DocumentController::showManual)
        ->setShortcuts(keysWith(Qt::Key_F1, QKeySequence::HelpContents));
    QAction *about =
        help->addAction(tr("&About Tarvex Cloud"), this, [] { showAboutBox(/*window=*/nullptr); });
    about->setMenuRole(QAction::AboutRole);
}
