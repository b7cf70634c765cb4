#include "Commands.h"
#include "Database.h"
#include "InstallationOptions.h"
#include "NewInvitations.h"

#include <ctime>
#include <iostream>
#include <memory>

namespace tarvex::app {

namespace {

struct InviteOptions
{
    std::size_t count = 1;
    int days = 14;
};

int invite(const InstallationOptions &installation, const InviteOptions &options)
{
    constexpr std::int64_t day = 24LL * 60 * 60;
    store::Database database = installation.orNew();
    const std::int64_t expiresAt = std::time(nullptr) + options.days * day;
    for (const std::string &code : requests::createInvitations(database, options.count, expiresAt))
        std::cout << code << "\n";
    return 0;
}

} // namespace

Command addInvite(CLI::App &program)
{
    CLI::App *const command =
        program.add_subcommand("invite", "Print codes that serve --sign-up invitation asks for");
    const auto options = std::make_shared<InviteOptions>();
    command->add_option("--count", options->count, "How many accounts may be made")
        ->check(CLI::Range(1, 10'000))
        ->capture_default_str();
    command->add_option("--days", options->days, "For how long")
        ->check(CLI::Range(1, 3'650))
        ->capture_default_str();
    return {command, [options, installation = addInstallationOptions(*command)] {
                return invite(*installation, *options);
            }};
}

} // namespace tarvex::app
