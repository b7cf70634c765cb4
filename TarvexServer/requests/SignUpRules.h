#pragma once

namespace tarvex::requests {

/// Who may make an account.
struct SignUpRules
{
    enum class Mode {
        Open,
        Closed,
        Invitation, ///< whoever types a code behind the name
    };

    Mode mode = Mode::Open;
};

} // namespace tarvex::requests
