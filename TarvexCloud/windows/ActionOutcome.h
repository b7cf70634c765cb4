#pragma once

#include <QString>

/// What the user had done on the service, and what is known of it, for the main window to say.
struct ActionOutcome
{
    enum class Kind { AreaSaved, GoalMarkedDone, AreasRenamed, SetCreated, SetRenamed, SetDeleted };
    enum class Result {
        Done,
        Refused,
        Unknown ///< no answer came: nobody knows whether it is stored
    };

    Kind kind = Kind::AreaSaved;
    QString name; ///< of the area, the goal or the set
    Result result = Result::Done;
};
