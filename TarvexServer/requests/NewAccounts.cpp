#include "NewAccounts.h"

#include "Md5.h"

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

std::vector<std::string> loginDigests(std::string_view login)
{
    std::vector<std::string> digests = {security::signInDigest(login)};
    const std::string lower = security::signInDigest(asciiLowerCase(login));
    if (lower != digests.front())
        digests.push_back(lower);
    return digests;
}

store::NewAccount newAccount(std::string_view login, const std::string &name, const std::string &passwordHash,
                             std::int64_t now)
{
    return store::NewAccount{.loginDigests = loginDigests(login),
                             .name = name,
                             .passwordHash = passwordHash,
                             .areas = startingAreas,
                             .createdAt = now};
}

} // namespace tarvex::requests
