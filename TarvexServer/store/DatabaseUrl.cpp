#include "DatabaseUrl.h"

#include "StoreError.h"

namespace tarvex::store {

std::filesystem::path sqliteFile(const std::string &url)
{
    const std::string scheme = "sqlite:";
    if (url.starts_with("postgresql://") || url.starts_with("postgres://"))
        throw CannotOpen(
            "This build does not serve PostgreSQL databases yet; give a database as sqlite:PATH.");
    if (!url.starts_with(scheme) || url.size() == scheme.size())
        throw CannotOpen("The database must be given as sqlite:PATH.");
    const std::string path = url.substr(scheme.size());
    if (path.find_first_of("\"?#") != std::string::npos)
        throw CannotOpen("The path of the database holds a character that is not allowed there (\" ? #).");
    return path;
}

} // namespace tarvex::store
