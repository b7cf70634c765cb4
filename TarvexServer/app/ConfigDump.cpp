#include "Commands.h"
#include "InstallationOptions.h"
#include "ServeOptions.h"

#include <iostream>

namespace tarvex::app {

Command addConfigDump(CLI::App &program)
{
    CLI::App *const command = program.add_subcommand(
        "config-dump", "Print the settings that serve would have, as a file of settings says them");
    return {command,
            [command, options = addServeOptions(*command), installation = addInstallationOptions(*command)] {
                std::cout << command->config_to_str();
                return 0;
            }};
}

} // namespace tarvex::app
