#include "Administration.h"
#include "Commands.h"
#include "InstallationOptions.h"
#include "Output.h"
#include "Password.h"

#include <ctime>
#include <iostream>

namespace tarvex::app {

namespace {

int createAccount(const InstallationOptions &installation, const requests::AccountTexts &texts, bool isJson)
{
    store::Database database = installation.orNew();
    const std::int64_t accountId =
        requests::createAccount(database, installation.open(database), texts, std::time(nullptr));
    if (isJson)
        printJson({{"account", std::to_string(accountId)}});
    else
        std::cout << "The account " << accountId << " was made." << std::endl;
    return 0;
}

} // namespace

Command addCreateAccount(CLI::App &program)
{
    CLI::App *const command =
        program.add_subcommand("create-account", "Make an account, whoever else may sign up");
    const auto texts = std::make_shared<requests::AccountTexts>();
    command->add_option("--login", texts->login, "The e-mail address to sign in with")->required();
    command->add_option("--name", texts->name, "The name of the person")->required();
    return {command, [texts, password = addPasswordOptions(*command),
                      installation = addInstallationOptions(*command), isJson = addJsonOption(*command)] {
                texts->password = password->read();
                return createAccount(*installation, *texts, *isJson);
            }};
}

} // namespace tarvex::app
