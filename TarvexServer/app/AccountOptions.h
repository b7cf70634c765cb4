#pragma once

#include "InstallationOptions.h"

#include <CLI/App.hpp>
#include <cstdint>
#include <memory>
#include <string>

namespace tarvex::app {

/// Which account a command is about.
struct AccountOptions
{
    std::string login;
    std::int64_t accountId = 0;

    bool isGiven() const { return !login.empty() || accountId != 0; }
    /// Its id. The secret of the installation is opened only if there is a login to be found by it. Throws
    /// AccountProblem if there is no such account.
    std::int64_t find(store::Database &opened, const InstallationOptions &installation) const;
};

/// What the command will have been told.
std::shared_ptr<AccountOptions> addAccountOptions(CLI::App &command, bool isRequired = true);

} // namespace tarvex::app
