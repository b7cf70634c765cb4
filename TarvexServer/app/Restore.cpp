#include "Commands.h"
#include "InstallationOptions.h"
#include "Output.h"

#include <boost/json.hpp>
#include <iostream>

namespace tarvex::app {

namespace {

void printForPeople(const requests::Restored &restored)
{
    std::cout << "Accounts restored: " << restored.accounts << ".\n";
    if (restored.tookSecret)
        std::cout << "The secret was missing, and is that of the copy now.\n";
    if (restored.replaced)
        std::cout << "What was there before is kept as " << restored.replaced->string() << ".\n";
}

boost::json::value documentOf(const requests::Restored &restored)
{
    boost::json::value document = {{"accounts", restored.accounts}, {"took_secret", restored.tookSecret}};
    if (restored.replaced)
        document.as_object()["replaced"] = restored.replaced->string();
    return document;
}

} // namespace

Command addRestore(CLI::App &program)
{
    CLI::App *const command = program.add_subcommand(
        "restore", "Put a copy in the place of the database, which is kept under another name; no server may"
                   " run");
    const auto copy = std::make_shared<std::string>();
    command->add_option("copy", *copy, "The copy that backup made")->required()->type_name("FILE");
    const auto isJson = addJsonOption(*command);
    return {command, [copy, isJson, installation = addInstallationOptions(*command)] {
                const auto restored = requests::restore(installation->files(), *copy, std::time(nullptr));
                *isJson ? printJson(documentOf(restored)) : printForPeople(restored);
                return 0;
            }};
}

} // namespace tarvex::app
