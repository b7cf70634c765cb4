#include "Logins.h"

#include <vector>

namespace tarvex::store {

std::string secretProof(Connection &connection)
{
    Rows found = connection.rows("SELECT proof FROM secret_proof");
    return found.next() ? std::string(found.text(0)) : "";
}

bool areLoginsKeyed(Connection &connection)
{
    return !secretProof(connection).empty();
}

bool keyLogins(Connection &connection, const std::string &proof,
               const std::function<std::string(std::string_view)> &keyed)
{
    if (const std::string known = secretProof(connection); !known.empty())
        return known == proof;
    std::vector<std::string> digests;
    {
        Rows found = connection.rows("SELECT login_digest FROM login");
        while (found.next())
            digests.emplace_back(found.text(0));
    }
    for (const std::string &digest : digests)
        connection.change("UPDATE login SET login_digest = $1 WHERE login_digest = $2", keyed(digest),
                          digest);
    connection.change("INSERT INTO secret_proof (proof) VALUES ($1)", proof);
    return true;
}

} // namespace tarvex::store
