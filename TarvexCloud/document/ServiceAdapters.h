#pragma once

#include "ErrorBox.h"
#include "InputHold.h"
#include "TVXAlert.h"
#include "TVXRequestWait.h"

/// Shows the service client's failures in a box.
class ServiceAlert : public TVXAlert
{
public:
    void showError(const QString &description) override { showErrorBox(description); }
};

/// Keeps the windows alive and drops the user's input for as long as a request is in flight.
class HeldInputWait : public TVXRequestWait
{
public:
    void requestStarted() override { m_hold.begin(); }
    void turn() override { m_hold.turn(); }
    void requestEnded() override { m_hold.end(); }

private:
    InputHold m_hold;
};
