#pragma once

#include <QObject>

class BusyIndicator;

/// The controller of a window that shows nothing but progress. For layouts that have one; no window of the
/// product does.
class PleaseWaitWindowController : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    /// Not owned; null until a layout sets it.
    BusyIndicator *progress() const { return m_progress; }
    void setProgress(BusyIndicator *progress) { m_progress = progress; }

private:
    BusyIndicator *m_progress = nullptr;
};
