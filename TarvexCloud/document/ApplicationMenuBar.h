#pragma once

#include <QMenuBar>

class DocumentController;

/// The menu bar for when no document is open, where the platform shows one then.
class ApplicationMenuBar : public QMenuBar
{
    Q_OBJECT
public:
    /// The controller is not owned and must outlive the menu bar.
    explicit ApplicationMenuBar(DocumentController &controller);
};
