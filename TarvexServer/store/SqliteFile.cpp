#include "SqliteFile.h"

#include "StoreError.h"

namespace tarvex::store {

std::filesystem::path sqliteFile(const std::string &url)
{
    const std::string scheme = "sqlite:";
    if (url.starts_with("postgres"))
        throw CannotOpen("Copies and repair of a PostgreSQL database are the business of its own server.");
    if (!url.starts_with(scheme) || url.size() == scheme.size())
        throw CannotOpen("The database must be given as sqlite:PATH or postgresql://HOST/NAME.");
    const std::string path = url.substr(scheme.size());
    if (path.find_first_of("\"?#") != std::string::npos)
        throw CannotOpen("The path of the database holds a character that is not allowed there (\" ? #).");
    return path;
}

bool isOurs(SqliteConnection &session)
{
    if (session.numberOf("PRAGMA application_id") == applicationId)
        return true;
    const auto ours = session.numberOf("SELECT COUNT(*) FROM sqlite_master WHERE type = 'table' AND name IN"
                                       " ('schema_version', 'account', 'login', 'area', 'goal_set', 'goal')");
    return ours == 6;
}

std::unique_ptr<SqliteConnection> openAsItIs(const std::filesystem::path &file,
                                             const std::filesystem::path &copyOf)
{
    const std::string called = (copyOf.empty() ? file : copyOf).string();
    if (!std::filesystem::is_regular_file(file))
        throw CannotOpen("There is no database " + called + ".");
    try {
        auto session = std::make_unique<SqliteConnection>(file);
        if (!isOurs(*session))
            throw CannotOpen("The file " + called + " is no database of tarvex-server.");
        return session;
    } catch (const TransactionFailed &error) {
        throw CannotOpen("The database " + called + " cannot be used: " + error.what() + ".");
    }
}

std::int64_t schemaVersion(SqliteConnection &session)
{
    if (session.numberOf("SELECT COUNT(*) FROM sqlite_master WHERE name = 'schema_version'") == 0)
        return 0;
    return session.numberOf("SELECT version FROM schema_version");
}

} // namespace tarvex::store
