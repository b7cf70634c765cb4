#include "Commands.h"
#include "InstallationOptions.h"
#include "SampleAccount.h"

#include <ctime>
#include <iostream>
#include <memory>

namespace tarvex::app {

namespace {

int sample(const InstallationOptions &installation, bool isForced)
{
    store::Database database = installation.orNew();
    if (!requests::createSampleAccount(database, installation.open(database), /*besideOthers=*/isForced,
                                       std::time(nullptr)))
        std::cout << "The sample account is there already.\n";
    std::cout << "login: " << requests::sampleLogin << "\npassword: " << requests::samplePassword
              << std::endl;
    return 0;
}

} // namespace

Command addSample(CLI::App &program)
{
    CLI::App *const command = program.add_subcommand("sample", "Make an account to try the client with");
    const auto isForced = std::make_shared<bool>(false);
    command->add_flag("--force", *isForced, "Also in a database that has other accounts");
    return {command, [isForced, installation = addInstallationOptions(*command)] {
                return sample(*installation, *isForced);
            }};
}

} // namespace tarvex::app
