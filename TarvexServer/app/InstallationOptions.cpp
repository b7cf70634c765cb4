#include "InstallationOptions.h"

#include "Checks.h"
#include "PostgresEngine.h"
#include "SqliteFile.h"

#include <string_view>

namespace tarvex::app {

namespace {

constexpr std::string_view ofFiles = "sqlite:";

bool isDatabase(const std::string &url)
{
    return (url.starts_with(ofFiles) && url.size() > ofFiles.size()) || store::PostgresEngine::isUrl(url);
}

} // namespace

requests::InstallationFiles InstallationOptions::files() const
{
    const std::filesystem::path file = store::sqliteFile(database);
    return {.database = file, .secret = secret.empty() ? file.string() + ".secret" : secret};
}

bool InstallationOptions::isMissing() const
{
    return database.starts_with(ofFiles) && !std::filesystem::exists(database.substr(ofFiles.size()));
}

store::Database InstallationOptions::existing() const
{
    if (isMissing())
        throw store::CannotOpen("There is no database " + database.substr(ofFiles.size()) + ".");
    return store::Database(database);
}

store::Database InstallationOptions::orNew(const store::Room &room) const
{
    // A secret of another place may have been made before its database.
    if (isMissing() && secret.empty() && std::filesystem::exists(files().secret))
        throw store::CannotOpen("The database " + files().database.string() +
                                " is missing, but its secret is there: " + files().secret.string() +
                                ". Put the file back or restore a copy, or move the secret away.");
    return store::Database(database, room);
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
    command
        .add_option("--database", options->database, "The database, as sqlite:PATH or postgresql://HOST/NAME")
        ->check(readBy(isDatabase, "sqlite:PATH or postgresql://HOST/NAME"))
        ->type_name("URL")
        ->required();
    command.add_option(
        "--secret", options->secret,
        "The file of the secret that logins are kept under, made if it is not there; PATH.secret"
        " unless it is given");
    return options;
}

} // namespace tarvex::app
