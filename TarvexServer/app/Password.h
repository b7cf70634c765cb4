#pragma once

#include <CLI/App.hpp>
#include <memory>
#include <string>

namespace tarvex::app {

/// Where a command takes a new password from, which is never an argument: others see those.
struct PasswordOptions
{
    std::string file;

    /// The first line of the file, else of standard input; from a terminal it is asked for twice and not
    /// shown. To be called while the process has one thread only. Throws std::runtime_error with a sentence.
    std::string read() const;
};

/// What the command will have been told.
std::shared_ptr<const PasswordOptions> addPasswordOptions(CLI::App &command);

} // namespace tarvex::app
