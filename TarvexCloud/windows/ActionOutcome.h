#pragma once

#include "TVXManager.h"

/// What the user had done on the service, and what is known of it, for the main window to say.
struct ActionOutcome
{
    enum class Kind { AreaSaved, GoalMarkedDone, AreasRenamed, SetCreated, SetRenamed, SetDeleted };

    Kind kind = Kind::AreaSaved;
    QString name; ///< of the area, the goal or the set
    TVXWritten result = TVXWritten::Done;
};
