#include "AccountOptions.h"

#include "Administration.h"

namespace tarvex::app {

std::int64_t AccountOptions::find(store::Database &opened, const InstallationOptions &installation) const
{
    if (!login.empty())
        return requests::accountOfLogin(opened, installation.open(opened), login);
    return requests::overviewOf(opened, accountId).accountId;
}

std::shared_ptr<AccountOptions> addAccountOptions(CLI::App &command, bool isRequired)
{
    auto options = std::make_shared<AccountOptions>();
    CLI::App *const group = command.add_option_group("Account", "Which account, by one of these");
    group->add_option("--login", options->login, "The e-mail address that it was made with")
        ->check(
            CLI::Validator([](const std::string &text) { return text.empty() ? "It is empty." : ""; }, ""));
    group->add_option("--account", options->accountId, "Its id, which the command accounts tells")
        ->check(CLI::PositiveNumber);
    group->require_option(isRequired ? 1 : 0, 1);
    return options;
}

} // namespace tarvex::app
