#pragma once

#include "Copies.h"
#include "Installation.h"

#include <CLI/App.hpp>
#include <memory>
#include <string>

namespace tarvex::app {

/// Which installation a command is about: its database and the secret that its logins are kept under.
struct InstallationOptions
{
    std::string database;
    std::string secret; ///< beside the database unless it is given

    /// Its files. Throws store::CannotOpen if the database is none of files.
    requests::InstallationFiles files() const;
    /// Whether the database is a file that is not there.
    bool isMissing() const;
    /// The database, which must be there already. Throws store::CannotOpen.
    store::Database existing() const;
    /// The database, which is made if it is not there; but where its secret is, it was lost, which
    /// store::CannotOpen says.
    store::Database orNew(const store::Room &room = {}) const;
    /// Throws like requests::openInstallation().
    security::KeyedHash open(store::Database &opened) const;
};

/// What the command will have been told.
std::shared_ptr<const InstallationOptions> addInstallationOptions(CLI::App &command);

} // namespace tarvex::app
