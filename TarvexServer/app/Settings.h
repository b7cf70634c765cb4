#pragma once

#include <CLI/App.hpp>
#include <istream>
#include <map>
#include <string>
#include <vector>

namespace tarvex::app {

/// The options that are not given as flags: from environment variables or, where there is none, from a
/// settings file. The file has lines of the form "name = value", where names are those of the options without
/// their dashes, and comments behind "#". One file does for all commands: each takes what it knows, and what
/// none knows is refused.
class Settings : public CLI::Config
{
public:
    /// Gives the program the option --config. To be done before commands are added.
    static void addTo(CLI::App &program);

    /// What is wrong with the command line or the settings, and where that stands.
    static std::string faultOf(const CLI::App &program, const CLI::Error &error);

    /// What a command was told and what it takes by default, in the form of the file.
    std::string to_config(const CLI::App *command, bool withDefaults, bool withDescriptions,
                          std::string prefix) const override;
    /// What the command that is run takes from the environment and the file.
    std::vector<CLI::ConfigItem> from_config(std::istream &file) const override;

private:
    struct Setting
    {
        std::vector<std::string> values; ///< several where the option may be given several times
        std::string origin;              ///< in words
    };
    using All = std::map<std::string, Setting>; // by the option's name

    explicit Settings(const CLI::App &program) : m_program(program) {}
    All readFile(std::istream &file) const;
    bool isKnown(const std::string &name) const;

    const CLI::App &m_program;
    mutable All m_given; // to the command that is run
};

} // namespace tarvex::app
