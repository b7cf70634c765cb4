#include "NewInvitations.h"

#include "InvitationCode.h"
#include "Invitations.h"

#include <algorithm>

namespace tarvex::requests {

std::vector<std::string> createInvitations(store::Database &database, std::size_t count,
                                           std::int64_t expiresAt)
{
    std::vector<std::string> codes(count);
    std::generate(codes.begin(), codes.end(), security::newInvitationCode);
    database.write([&](store::Connection &connection) {
        for (const std::string &code : codes)
            store::createInvitation(connection, security::invitationHash(code), expiresAt);
    });
    return codes;
}

} // namespace tarvex::requests
