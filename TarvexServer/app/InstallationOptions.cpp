#include "InstallationOptions.h"

#include "SqliteFile.h"

namespace tarvex::app {

requests::InstallationFiles InstallationOptions::files() const
{
    const std::filesystem::path file = store::sqliteFile(database);
    return {.database = file, .secret = secret.empty() ? file.string() + ".secret" : secret};
}

store::Database InstallationOptions::existing() const
{
    const std::string scheme = "sqlite:";
    if (database.starts_with(scheme) && !std::filesystem::exists(database.substr(scheme.size())))
        throw store::CannotOpen("There is no database " + database.substr(scheme.size()) + ".");
    return store::Database(database);
}

security::KeyedHash InstallationOptions::open(store::Database &opened) const
{
    if (!secret.empty())
        return requests::openInstallation(opened, secret);
    if (opened.file().empty())
        throw store::CannotOpen(
            "This database needs --secret, the file of the secret that logins are kept under.");
    return requests::openInstallation(opened, opened.file().string() + ".secret");
}

std::shared_ptr<const InstallationOptions> addInstallationOptions(CLI::App &command)
{
    const auto options = std::make_shared<InstallationOptions>();
    command.add_option("--database", options->database, "The database, as sqlite:PATH or postgresql://...")
        ->required();
    command.add_option(
        "--secret", options->secret,
        "The file of the secret that logins are kept under, made if it is not there; PATH.secret"
        " unless it is given");
    return options;
}

} // namespace tarvex::app
