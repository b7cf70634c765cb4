#pragma once

#include <CLI/App.hpp>
#include <functional>
#include <vector>

namespace tarvex::app {

/// Runs the command that the arguments give; returns the exit code of the process.
int runCommand(int argc, const char *const *argv);

/// What the process was started with, which lives as long as it does.
struct CommandLine
{
    int count = 0;
    const char *const *words = nullptr;
};

/// A command that the command line knows, and what it does once its options are read: that returns the exit
/// code, and throws a std::exception whose text is for the operator.
struct Command
{
    CLI::App *options;
    std::function<int()> run;
};

/// Adds every command but serve, and what goes for all of them: where settings come from.
std::vector<Command> addAllButServe(CLI::App &program);

// Each adds its command to the program, and has a file of its own.
Command addServe(CLI::App &program, const CommandLine &line);
Command addSample(CLI::App &program);
Command addInvite(CLI::App &program);
Command addMigrate(CLI::App &program);
Command addCheck(CLI::App &program);
Command addCompact(CLI::App &program);
Command addBackup(CLI::App &program);
Command addRestore(CLI::App &program);
Command addConfigDump(CLI::App &program);
Command addAccounts(CLI::App &program);
Command addCreateAccount(CLI::App &program);
Command addSetPassword(CLI::App &program);
Command addDisable(CLI::App &program);
Command addEnable(CLI::App &program);
Command addDeleteAccount(CLI::App &program);
Command addUndelete(CLI::App &program);
Command addExport(CLI::App &program);
Command addImport(CLI::App &program);
Command addHealth(CLI::App &program);

} // namespace tarvex::app
