#pragma once

#include <cstdint>

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
    std::int64_t mostAccounts = 100'000;
};

} // namespace tarvex::requests
