#pragma once

#include <chrono>
#include <functional>
#include <QElapsedTimer>
#include <QTimer>

/// Says in words that a user action waits for the service: what is being done, for how long it has waited and
/// how long that may take. It begins after a second, is renewed every second and ends with the scope; what is
/// then to be said is its owner's.
class WaitNotice
{
public:
    /// @param doing  a sentence, "Saving Health…"
    /// @param atMost  the sum of the deadlines of all requests of the action
    /// @param say  called on the event loop that runs while a request waits
    WaitNotice(const QString &doing, std::chrono::milliseconds atMost,
               const std::function<void(const QString &)> &say);

private:
    QElapsedTimer m_waited;
    QTimer m_timer;
};
