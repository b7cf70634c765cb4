#include "Settings.h"

#include <algorithm>
#include <cstdlib>
#include <optional>

namespace tarvex::app {

namespace {

constexpr const char *noFile = "/dev/null";
constexpr const char *commandLine = "command line";

std::string variableOf(const std::string &option)
{
    std::string name = "TARVEX_" + option;
    std::transform(name.begin(), name.end(), name.begin(), [](char letter) {
        return letter == '-' ? '_' : letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 32) : letter;
    });
    return name;
}

/// An empty variable is none.
std::optional<std::string> environmentValue(const std::string &option)
{
    const char *const value = std::getenv(variableOf(option).c_str());
    return value != nullptr && *value != '\0' ? std::optional<std::string>(value) : std::nullopt;
}

/// The name that an option has in the file; empty if it cannot stand there.
std::string nameOf(const CLI::Option &option)
{
    const bool isSetting = option.get_configurable() && !option.get_lnames().empty();
    return isSetting ? option.get_lnames().front() : "";
}

std::string trimmed(const std::string &text)
{
    constexpr const char *blanks = " \t\r";
    const auto begin = text.find_first_not_of(blanks);
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

[[noreturn]] void refuse(const std::string &name, const char *fault, const std::string &place)
{
    throw CLI::FileError("The setting \"" + name + "\" " + fault + " (" + place + ").");
}

} // namespace

void Settings::addTo(CLI::App &program)
{
    const auto file = environmentValue("config");
    program
        .set_config("--config", file.value_or(noFile), "A file of settings, for all that is not given here",
                    /*config_required=*/file.has_value())
        ->type_name("FILE");
    program.failure_message([](const CLI::App *failed, const CLI::Error &error) {
        return "tarvex-server: " + faultOf(*failed, error) + "\nRun with --help for more.\n";
    });
    program.config_formatter(std::shared_ptr<Settings>(new Settings(program)));
}

std::string Settings::faultOf(const CLI::App &program, const CLI::Error &error)
{
    std::string fault = error.what();
    const auto settings = std::dynamic_pointer_cast<const Settings>(program.get_config_formatter());
    for (const auto &[name, setting] : settings->m_given) {
        if (fault.starts_with("--" + name + ":") && setting.origin != commandLine)
            return fault + " (" + setting.origin + ")";
    }
    return fault;
}

std::vector<CLI::ConfigItem> Settings::from_config(std::istream &file) const
{
    All inFile = readFile(file);
    std::vector<CLI::ConfigItem> settings;
    for (const CLI::App *command : m_program.get_subcommands()) {
        for (const CLI::Option *option : command->get_options()) {
            const std::string name = nameOf(*option);
            if (name.empty())
                continue;
            if (option->count() > 0) {
                m_given[name] = {.values = option->results(), .origin = commandLine};
                continue;
            }
            if (const auto value = environmentValue(name))
                m_given[name] = {.values = {*value}, .origin = "environment, " + variableOf(name)};
            else if (const auto found = inFile.find(name); found != inFile.end())
                m_given[name] = found->second;
            else
                continue;
            settings.push_back(
                {.parents = {command->get_name()}, .name = name, .inputs = m_given[name].values});
        }
    }
    return settings;
}

Settings::All Settings::readFile(std::istream &file) const
{
    const auto fileName = m_program.get_config_ptr()->as<std::string>();
    All settings;
    int number = 0;
    for (std::string line; std::getline(file, line);) {
        const std::string place = fileName + ", line " + std::to_string(++number);
        line = trimmed(line);
        if (line.empty() || line.front() == '#')
            continue;
        const auto equals = line.find('=');
        const std::string name = trimmed(line.substr(0, equals));
        const std::string value = equals == std::string::npos ? "" : trimmed(line.substr(equals + 1));
        if (!isKnown(name))
            refuse(name, "is unknown", place);
        if (value.empty())
            refuse(name, "has no value", place);
        if (value.front() == '"' || value.front() == '\'')
            refuse(name, "must have its value without quotes", place);
        settings[name].values.push_back(value);
        settings[name].origin = place;
    }
    return settings;
}

bool Settings::isKnown(const std::string &name) const
{
    const auto commands = m_program.get_subcommands([](const CLI::App *) { return true; });
    return std::any_of(commands.begin(), commands.end(), [&name](const CLI::App *command) {
        const auto options = command->get_options();
        return std::any_of(options.begin(), options.end(), [&name](const CLI::Option *option) {
            return !name.empty() && nameOf(*option) == name;
        });
    });
}

std::string Settings::to_config(const CLI::App *command, bool /*withDefaults*/, bool /*withDescriptions*/,
                                std::string /*prefix*/) const
{
    std::string text;
    for (const CLI::Option *option : command->get_options()) {
        const std::string name = nameOf(*option);
        if (name.empty())
            continue;
        const auto found = m_given.find(name);
        const std::string byDefault = option->get_default_str();
        if (found == m_given.end() && byDefault.empty()) {
            text.append("# ").append(name).append(" is not set\n");
            continue;
        }
        const Setting setting =
            found != m_given.end() ? found->second : Setting{.values = {byDefault}, .origin = "default"};
        text.append("# ").append(setting.origin).append("\n");
        for (const std::string &value : setting.values)
            text.append(name).append(" = ").append(value).append("\n");
    }
    return text;
}

} // namespace tarvex::app
