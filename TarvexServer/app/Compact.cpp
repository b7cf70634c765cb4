#include "Compact.h"
#include "Commands.h"
#include "InstallationOptions.h"
#include "Output.h"

#include <iostream>

namespace tarvex::app {

Command addCompact(CLI::App &program)
{
    CLI::App *const command = program.add_subcommand(
        "compact", "Give back to the disk what the database does not need any more; no server may run");
    const auto isJson = addJsonOption(*command);
    return {command, [isJson, installation = addInstallationOptions(*command)] {
                const std::uintmax_t freed = store::compactDatabase(installation->files().database);
                if (*isJson)
                    printJson({{"freed_bytes", freed}});
                else
                    std::cout << "Freed " << sizeInWords(freed) << ".\n";
                return 0;
            }};
}

} // namespace tarvex::app
