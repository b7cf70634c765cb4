#include "Installation.h"

#include "InstallationKey.h"
#include "Logins.h"

namespace tarvex::requests {

namespace {

std::string proofOf(const security::KeyedHash &hash)
{
    return hash({"proof"});
}

} // namespace

security::KeyedHash openInstallation(store::Database &database, const std::filesystem::path &secretFile)
{
    bool isKeyed = false;
    database.read([&](store::Connection &connection) { isKeyed = store::areLoginsKeyed(connection); });
    if (isKeyed && !std::filesystem::exists(secretFile))
        throw store::CannotOpen("The secret of the database, " + secretFile.string() +
                                ", is missing; without it nobody can sign in.");
    const security::KeyedHash hash(security::installationKey(secretFile));
    bool isOurs = false;
    database.write([&](store::Connection &connection) {
        isOurs = store::keyLogins(connection, proofOf(hash),
                                  [&](std::string_view digest) { return loginKey(hash, digest); });
    });
    if (!isOurs)
        throw store::CannotOpen("The secret " + secretFile.string() + " is that of another database.");
    return hash;
}

bool isSecretOf(store::Connection &connection, const std::filesystem::path &secretFile)
{
    return std::filesystem::exists(secretFile) &&
           proofOf(security::KeyedHash(security::installationKey(secretFile))) ==
               store::secretProof(connection);
}

std::string loginKey(const security::KeyedHash &hash, std::string_view digest)
{
    return hash({"login", digest});
}

} // namespace tarvex::requests
