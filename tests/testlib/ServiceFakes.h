#pragma once

#include "TVXAlert.h"
#include "TVXRequestWait.h"

#include <functional>
#include <QCoreApplication>
#include <QStringList>

/// Keeps what the user would have been shown.
class RecordingAlert : public TVXAlert
{
public:
    void showError(const QString &description) override { errors.append(description); }

    QStringList errors;
};

/// A wait in which nothing happens but what the test asks for; it writes down what it was told.
class RecordingWait : public TVXRequestWait
{
public:
    void requestStarted() override { ++started; }
    void turn() override
    {
        ++turns;
        if (onTurn)
            onTurn();
    }
    void requestEnded() override { ++ended; }

    int started = 0;
    int turns = 0;
    int ended = 0;
    std::function<void()> onTurn;
};

/// A wait that lets the event loop run, for tests with windows.
class EventsWait : public TVXRequestWait
{
public:
    void requestStarted() override {}
    void turn() override { QCoreApplication::processEvents(); }
    void requestEnded() override {}
};
