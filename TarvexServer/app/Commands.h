#pragma once

namespace tarvex::app {

/// Runs the command that the arguments give; returns the exit code of the process.
int runCommand(int argc, const char *const *argv);

} // namespace tarvex::app
