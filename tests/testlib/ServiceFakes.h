#pragma once

#include "TVXAlert.h"
#include "TVXRequestWait.h"

#include <functional>
#include <QStringList>

/// Keeps what the user would have been shown.
struct RecordingAlert : TVXAlert
{
    void showError(const QString &description) override { errors.append(description); }

    QStringList errors;
};

/// A wait in which nothing happens but what the test asks for, say to process events; it counts its calls.
struct RecordingWait : TVXRequestWait
{
    void requestStarted() override {}
    void turn() override
    {
        ++turns;
        onTurn();
    }
    void requestEnded() override
    {
        ++ended;
        onEnd();
    }

    int turns = 0;
    int ended = 0;
    std::function<void()> onTurn = [] {};
    std::function<void()> onEnd = [] {};
};
