#include "Commands.h"
#include "InstallationOptions.h"
#include "Integrity.h"
#include "Output.h"

#include <iostream>

namespace tarvex::app {

namespace {

void printForPeople(const store::Examination &found)
{
    if (found.repaired > 0)
        std::cout << "Counts that were put right: " << found.repaired << ".\n";
    for (const std::string &fault : found.faults)
        std::cout << fault << "\n";
    if (found.schema < found.newestSchema)
        std::cout << "The schema is " << found.schema << "; serve brings it to " << found.newestSchema
                  << ". Only the file was looked at.\n";
    if (found.faults.empty())
        std::cout << "Nothing is wrong with the database.\n";
}

boost::json::value documentOf(const store::Examination &found)
{
    return {{"schema", found.schema},
            {"newest_schema", found.newestSchema},
            {"repaired", found.repaired},
            {"faults", boost::json::array(found.faults.begin(), found.faults.end())}};
}

} // namespace

Command addCheck(CLI::App &program)
{
    CLI::App *const command = program.add_subcommand(
        "check",
        "Tell what is wrong with the database; exit code 1 if anything is. A server may run meanwhile");
    const auto repairs = std::make_shared<bool>(false);
    command->add_flag("--repair", *repairs, "Put counts right that are kept beside the data, never the data");
    const auto isJson = addJsonOption(*command);
    return {command, [repairs, isJson, installation = addInstallationOptions(*command)] {
                const auto found = store::examine(installation->files().database, *repairs);
                *isJson ? printJson(documentOf(found)) : printForPeople(found);
                return found.faults.empty() ? 0 : 1;
            }};
}

} // namespace tarvex::app
