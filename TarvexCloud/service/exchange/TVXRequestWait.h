#pragma once

/// What happens to the application while a request is in flight: the window repaints, the spinner turns, and
/// what the user types or clicks is dropped. Called on the thread that waits.
class TVXRequestWait
{
public:
    virtual ~TVXRequestWait() = default;

    /// Before anything is sent.
    virtual void requestStarted() = 0;
    /// Lets pending events run once; must not wait for one.
    virtual void turn() = 0;
    /// Once per requestStarted(), whatever the outcome. By then another request may be sent.
    virtual void requestEnded() = 0;
};
