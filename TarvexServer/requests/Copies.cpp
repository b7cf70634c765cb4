#include "Copies.h"

#include "Accounts.h"
#include "Backup.h"
#include "Installation.h"
#include "Logins.h"
#include "PrivateFile.h"
#include "Restore.h"
#include "StoreError.h"

namespace tarvex::requests {

namespace {

using store::MaintenanceFailed;

/// Long enough for whoever waits for the disk to have it, short enough for a large database.
constexpr std::chrono::milliseconds betweenSteps{2};

std::filesystem::path secretBeside(const std::filesystem::path &copy)
{
    return copy.string() + ".secret";
}

std::filesystem::path partOf(const std::filesystem::path &file)
{
    return file.string() + ".part";
}

/// Whether the secret has to be taken from beside the copy.
bool takesSecret(store::Connection &copied, const std::filesystem::path &secret,
                 const std::filesystem::path &copy)
{
    if (!store::areLoginsKeyed(copied) || isSecretOf(copied, secret))
        return false;
    if (std::filesystem::exists(secret))
        throw MaintenanceFailed("The secret " + secret.string() +
                                " is not that of the copy: nobody could sign in. To have the one beside the"
                                " copy taken, move this one away.");
    if (!isSecretOf(copied, secretBeside(copy)))
        throw MaintenanceFailed("The secret of the copy is neither in " + secret.string() + " nor in " +
                                secretBeside(copy).string() + "; without it nobody can sign in.");
    return true;
}

} // namespace

Backup backUp(const InstallationFiles &installation, const std::filesystem::path &target,
              std::optional<std::size_t> kept, std::time_t now)
{
    const bool isFolder = std::filesystem::is_directory(target);
    if (kept && !isFolder)
        throw MaintenanceFailed("Old copies can be removed from a folder only, and " + target.string() +
                                " is none.");
    Backup made;
    made.file = isFolder ? store::datedCopy(target, installation.database, now) : target;
    store::requireFreeOrCopy(made.file, installation.database);
    made.hasSecret = std::filesystem::exists(installation.secret);
    const std::filesystem::path secret = secretBeside(made.file);
    const store::UnfinishedFile unfinished(partOf(secret));
    if (made.hasSecret)
        store::copyPrivately(installation.secret, partOf(secret));
    const store::Copied copied = store::copyDatabase(installation.database, made.file, betweenSteps);
    if (made.hasSecret)
        store::putInPlace(partOf(secret), secret);
    made.accounts = copied.accounts;
    made.bytes = copied.bytes;
    if (kept)
        made.removed = store::removeOldCopies(target, installation.database, *kept);
    return made;
}

Restored restore(const InstallationFiles &installation, const std::filesystem::path &copy, std::time_t now)
{
    store::Restoration restoration(installation.database, copy);
    Restored restored;
    restored.accounts = store::countAccounts(restoration.readied());
    restored.tookSecret = takesSecret(restoration.readied(), installation.secret, copy);
    if (restored.tookSecret) {
        const store::UnfinishedFile unfinished(partOf(installation.secret));
        store::copyPrivately(secretBeside(copy), partOf(installation.secret));
        store::giveToOwnerOf(installation.database, partOf(installation.secret));
        store::putInPlace(partOf(installation.secret), installation.secret);
    }
    restored.replaced = restoration.put(now);
    return restored;
}

} // namespace tarvex::requests
