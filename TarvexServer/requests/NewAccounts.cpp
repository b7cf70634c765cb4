#include "NewAccounts.h"

#include "Installation.h"
#include "Md5.h"
#include "PasswordHash.h"
#include "Sets.h"
#include "Wipe.h"

#include <algorithm>

namespace tarvex::requests {

namespace {

// Wire text, hence the token for the ampersand.
const std::vector<store::NewArea> startingAreas = {
    {.name = "Health", .color = "#4caf50", .value = 0},
    {.name = "Career and Business", .color = "#2196f3", .value = 0},
    {.name = "Finance", .color = "#009688", .value = 0},
    {.name = "Family {_amp_} Friends", .color = "#ff9800", .value = 0},
    {.name = "Personal Growth", .color = "#9c27b0", .value = 0},
    {.name = "Fun and Recreation", .color = "#ffc107", .value = 0},
    {.name = "Home", .color = "#795548", .value = 0},
    {.name = "Romance", .color = "#e91e63", .value = 0},
};

std::string asciiLowerCase(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    });
    return lower;
}

} // namespace

std::vector<std::string> loginKeys(const security::KeyedHash &hash, std::string_view login)
{
    std::vector<std::string> keys;
    for (std::string text : {std::string(login), asciiLowerCase(login)}) {
        std::string digest = security::signInDigest(text);
        if (std::string key = loginKey(hash, digest); keys.empty() || key != keys.front())
            keys.push_back(std::move(key));
        security::wipe(digest);
        security::wipe(text);
    }
    return keys;
}

std::string newPasswordHash(std::string_view password)
{
    std::string digest = security::signInDigest(password);
    std::string passwordHash = security::hashPassword(digest);
    security::wipe(digest);
    return passwordHash;
}

store::NewAccount newAccount(std::vector<std::string> logins, const std::string &name,
                             const std::string &passwordHash, std::int64_t now)
{
    return store::NewAccount{.logins = std::move(logins),
                             .name = name,
                             .passwordHash = passwordHash,
                             .areas = startingAreas,
                             .createdAt = now};
}

std::optional<std::int64_t> createWithSet(store::Connection &connection, const store::NewAccount &account)
{
    const auto accountId = store::createAccount(connection, account);
    if (accountId)
        store::createSet(connection, *accountId, "My wheel", account.createdAt);
    return accountId;
}

} // namespace tarvex::requests
