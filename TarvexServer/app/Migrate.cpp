#include "Accounts.h"
#include "Commands.h"
#include "Database.h"
#include "InstallationOptions.h"
#include "Output.h"
#include "PostgresEngine.h"
#include "StoreError.h"
#include "Transfer.h"
#include "UseLock.h"

#include <iostream>
#include <memory>

namespace tarvex::app {

namespace {

struct MigrateOptions
{
    std::string from;
    std::string to;
    bool isJson = false;
};

/// Refuses what a server that runs, or another command, would go on writing to.
void requireUnused(const InstallationOptions &installation)
{
    if (!installation.isMissing() && !store::PostgresEngine::isUrl(installation.database))
        store::UseLock(installation.files().database, store::UseLock::Kind::Alone);
}

int migrate(const MigrateOptions &options)
{
    const InstallationOptions installation{.database = options.from, .secret = ""};
    requireUnused(installation);
    store::Database source = installation.existing();
    store::Database target(options.to);
    std::int64_t rows = 0;
    std::int64_t accounts = 0;
    std::string different;
    source.read([&](store::Connection &from) {
        accounts = store::countAccounts(from);
        target.write([&](store::Connection &to) {
            if (store::isInUse(to))
                throw store::CannotOpen("The database to go to is in use already.");
            rows = store::copyAll(from, to);
        });
        target.read([&](store::Connection &to) { different = store::firstDifference(from, to); });
    });
    if (!different.empty())
        throw store::CannotOpen("The copy of the table " + different + " is not the same. Do not use it.");
    if (options.isJson)
        printJson({{"accounts", accounts}, {"rows", rows}});
    else
        std::cout << "Copied and compared: " << rows << " rows, accounts: " << accounts
                  << ". The secret stays as it is." << std::endl;
    return 0;
}

} // namespace

Command addMigrate(CLI::App &program)
{
    CLI::App *const command = program.add_subcommand(
        "migrate",
        "Copy all of a database to another one that is not in use, of any engine. No server may run on"
        " the first meanwhile: what it saves might be missing in the second.");
    const auto options = std::make_shared<MigrateOptions>();
    command->add_option("--from", options->from, "The database to copy, as sqlite:PATH or postgresql://...")
        ->required();
    command->add_option("--to", options->to, "Where to")->required();
    command->add_flag("--json", options->isJson, "Say what was done as JSON");
    return {command, [options] { return migrate(*options); }};
}

} // namespace tarvex::app
