#pragma once

#include <functional>

class TVXAlert;
class TVXExchange;

/// What the sheets' controllers need of the application: the way to the service, and the one way in which
/// user actions run. The document's controller implements it.
class WindowServices
{
public:
    virtual ~WindowServices() = default;
    virtual TVXExchange &exchange() const = 0;
    virtual TVXAlert &alert() const = 0;

    /// Whether a request is in flight or a user action is still running.
    virtual bool isBusy() const = 0;
    /// Runs a user action unless one is running already; then it does nothing. An answer of the service that
    /// lacks part of its columns, or an index outside a list, ends the action: it is logged and `endedEarly`
    /// is called. No exception leaves this function.
    virtual void runAction(const std::function<void()> &action, const std::function<void()> &endedEarly) = 0;
    /// The same for what is not the user's doing, a sheet's load for one: it waits until nothing else runs.
    virtual void runWhenIdle(const std::function<void()> &action,
                             const std::function<void()> &endedEarly) = 0;
};
