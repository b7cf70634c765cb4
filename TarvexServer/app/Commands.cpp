#include "Commands.h"

#include "Settings.h"

#include <algorithm>
#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <vector>

namespace tarvex::app {

namespace {

constexpr const char *footer =
    "Options may also be environment variables, TARVEX_KEEP_FREE for --keep-free, or lines of the file that"
    " --config\nnames, keep-free = 64; a flag goes before a variable, a variable before the file.\n\n"
    "The exit code is 0 if all is done, 1 if it was refused or failed, which one sentence on standard error "
    "tells,"
    "\nand 100 or more if the command line or the settings were not understood.";

} // namespace

std::vector<Command> addAllButServe(CLI::App &program)
{
    program.fallthrough(); // what goes for all commands may stand behind them as well
    Settings::addTo(program);
    return {addSample(program),        addInvite(program),      addHealth(program),  addAccounts(program),
            addCreateAccount(program), addSetPassword(program), addDisable(program), addEnable(program),
            addDeleteAccount(program), addUndelete(program),    addExport(program),  addImport(program),
            addCheck(program),         addCompact(program),     addBackup(program),  addRestore(program),
            addMigrate(program),       addConfigDump(program)};
}

int runCommand(int argc, const char *const *argv)
{
    CLI::App program("The service behind Tarvex Cloud, for hosting by yourself.", "tarvex-server");
    program.set_version_flag("--version", TARVEX_VERSION);
    program.set_help_all_flag("--help-all", "Print the help of all commands and exit");
    program.footer(footer);
    program.require_subcommand(1);
    std::vector<Command> commands = addAllButServe(program);
    commands.push_back(addServe(program, {.count = argc, .words = argv}));
    CLI11_PARSE(program, argc, argv);
    try {
        const auto given = std::find_if(std::begin(commands), std::end(commands),
                                        [](const Command &command) { return command.options->parsed(); });
        return given->run();
    } catch (const std::exception &error) {
        std::cerr << "tarvex-server: " << error.what() << std::endl;
        return 1;
    }
}

} // namespace tarvex::app
