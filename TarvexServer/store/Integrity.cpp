#include "Integrity.h"

#include "Schema.h"
#include "SqliteFile.h"
#include "StoreError.h"
#include "UseLock.h"

#include <array>
#include <optional>

namespace tarvex::store {

namespace {

/// A count of an account that must never be less than what it stands for.
struct LeastCount
{
    LeastCount(const std::string &column, const std::string &least, std::string sentence)
        : wrong("SELECT COUNT(*) FROM account WHERE " + column + " < " + least),
          repair("UPDATE account SET " + column + " = " + least + " WHERE " + column + " < " + least),
          complaint(std::move(sentence))
    {
    }

    std::string wrong;
    std::string repair;
    std::string complaint;
};

// Statements are known by their place: these stand for ever.
const std::string ofAccount = "WHERE goal.account_id = account.account_id AND goal.deleted_at IS";
const std::array<LeastCount, 5> leastCounts = {{
    {"next_set_id",
     "(SELECT COALESCE(MAX(set_id), 0) + 1 FROM goal_set WHERE goal_set.account_id = account.account_id)",
     "would give an id of a set that is in use (next_set_id)"},
    {"next_goal_id",
     "(SELECT COALESCE(MAX(goal_id), 0) + 1 FROM goal WHERE goal.account_id = account.account_id)",
     "would give an id of a goal that is in use (next_goal_id)"},
    {"goals", "(SELECT COUNT(*) FROM goal " + ofAccount + " NULL)",
     "count fewer goals than they hold (goals)"},
    {"goal_bytes", "(SELECT COALESCE(SUM(LENGTH(name)), 0) FROM goal " + ofAccount + " NULL)",
     "count less text than they hold (goal_bytes)"},
    {"deleted_goals", "(SELECT COUNT(*) FROM goal " + ofAccount + " NOT NULL)",
     "count fewer deleted goals than they hold (deleted_goals)"},
}};

bool isAccountCountRight(Connection &connection)
{
    return connection.firstNumber("SELECT COUNT(*) FROM account_count"
                                  " WHERE accounts = (SELECT COUNT(*) FROM account)") == 1;
}

/// What is wrong with the counts that we keep beside the data, and with the data by our own rules, a sentence
/// each. For a database of the newest schema.
std::vector<std::string> faults(Connection &connection)
{
    std::vector<std::string> found;
    if (!isAccountCountRight(connection))
        found.emplace_back("The number of accounts is not what it is counted as (account_count).");
    for (const LeastCount &count : leastCounts) {
        if (const auto wrong = connection.firstNumber(count.wrong.c_str()); wrong > 0)
            found.push_back("Accounts that " + count.complaint + ": " + std::to_string(*wrong) + ".");
    }
    const auto astray = connection.firstNumber(
        "SELECT COUNT(*) FROM goal JOIN goal_set ON goal_set.account_id = goal.account_id"
        " AND goal_set.set_id = goal.set_id"
        " WHERE goal.deleted_at IS NULL AND goal_set.deleted_at IS NOT NULL");
    if (astray > 0)
        found.push_back("Goals that are there while their set is deleted: " + std::to_string(*astray) + ".");
    return found;
}

/// Puts right whichever counts are wrong, and touches no data. Returns how many were.
std::int64_t repairCounts(Connection &connection)
{
    std::int64_t repaired = 0;
    if (!isAccountCountRight(connection))
        repaired += connection.change("UPDATE account_count SET accounts = (SELECT COUNT(*) FROM account)");
    for (const LeastCount &count : leastCounts)
        repaired += connection.change(count.repair.c_str());
    return repaired;
}

/// All in one transaction, so that it is looked at as it is at one moment.
void examineCounts(SqliteConnection &session, Examination &examined, bool repairs)
{
    if (examined.schema > examined.newestSchema)
        examined.faults.emplace_back("The schema is that of a newer tarvex-server.");
    if (examined.schema != examined.newestSchema)
        return;
    session.execute(repairs ? "BEGIN IMMEDIATE" : "BEGIN");
    if (repairs)
        examined.repaired = repairCounts(session);
    examined.faults = faults(session);
    session.execute("COMMIT");
}

} // namespace

std::vector<std::string> damages(SqliteConnection &session)
{
    std::vector<std::string> found;
    Rows broken = session.rows("PRAGMA integrity_check(20)");
    while (broken.next()) {
        if (broken.text(0) != "ok")
            found.push_back("The file is damaged: " + std::string(broken.text(0)) + ".");
    }
    if (!found.empty())
        return found;
    Rows orphans = session.rows("SELECT \"table\", \"parent\", COUNT(*) FROM pragma_foreign_key_check"
                                " GROUP BY 1, 2");
    while (orphans.next())
        found.push_back("Rows of the table " + std::string(orphans.text(0)) + " whose row in the table " +
                        std::string(orphans.text(1)) + " is missing: " + std::to_string(orphans.number(2)) +
                        ".");
    return found;
}

Examination examine(const std::filesystem::path &file, bool repairs)
{
    const auto session = openAsItIs(file);
    std::optional<UseLock> use;
    if (repairs)
        use.emplace(file, UseLock::Kind::Shared);
    Examination examined;
    examined.newestSchema = static_cast<std::int64_t>(sqliteMigrations.size());
    try {
        examined.schema = schemaVersion(*session);
        examined.faults = damages(*session);
        if (examined.faults.empty())
            examineCounts(*session, examined, repairs);
    } catch (const TransactionHindered &) {
        throw MaintenanceFailed("The database " + file.string() + " is too busy now; try again later.");
    } catch (const TransactionFailed &error) {
        examined.faults.push_back("The file is damaged: " + std::string(error.what()) + ".");
    }
    return examined;
}

} // namespace tarvex::store
