#include "Transfer.h"

#include "Accounts.h"
#include "Logins.h"

#include <algorithm>
#include <utility>

namespace tarvex::store {

namespace {

using Row = std::vector<std::string>;

/// What stands for no value; none of these columns holds it otherwise.
const std::string nothing = "-1";

/// A table and its statements, which are known by their place.
struct Transfer
{
    explicit Transfer(const Table &described) : table(&described)
    {
        std::string columns;
        std::string read;
        std::string written;
        for (std::size_t i = 0; i < table->columns.size(); ++i) {
            const std::string &column = table->columns[i];
            const std::string comma = i > 0 ? ", " : "";
            std::string value = "$" + std::to_string(i + 1);
            std::string found = column;
            if (column.ends_with("_at") || column == "percents") { // which may lack
                found.insert(0, "COALESCE(").append(", ").append(nothing).append(")");
                value.insert(0, "NULLIF(CAST(").append(" AS BIGINT), ").append(nothing).append(")");
            }
            columns.append(comma).append(column);
            read.append(comma).append(found);
            written.append(comma).append(value);
        }
        select =
            "SELECT " + read + " FROM " + table->name + (table->isOfAccounts ? " WHERE account_id = $1" : "");
        insert = "INSERT INTO " + table->name + " (" + columns + ") VALUES (" + written + ")";
        clear = "DELETE FROM " + table->name;
    }

    const Table *table;
    std::string select;
    std::string insert;
    std::string clear;
};

const std::vector<Transfer> &transfers()
{
    static const std::vector<Transfer> all(tables().begin(), tables().end());
    return all;
}

std::vector<Row> rowsOf(const Transfer &transfer, Rows found)
{
    std::vector<Row> rows;
    while (found.next()) {
        Row row;
        for (std::size_t i = 0; i < transfer.table->columns.size(); ++i)
            row.emplace_back(found.text(static_cast<int>(i)));
        rows.push_back(std::move(row));
    }
    std::sort(rows.begin(), rows.end()); // engines sort texts each in its own way
    return rows;
}

std::vector<std::int64_t> accountIds(Connection &connection)
{
    std::vector<std::int64_t> ids;
    Rows found = connection.rows("SELECT account_id FROM account ORDER BY account_id");
    while (found.next())
        ids.push_back(found.number(0));
    return ids;
}

/// Calls it with each table and the reading of one part of it, account by account where it has accounts.
template<class Visit>
void visitAll(const std::vector<std::int64_t> &accounts, const Visit &visit)
{
    for (const Transfer &transfer : transfers()) {
        if (!transfer.table->isOfAccounts) {
            visit(transfer,
                  [&](Connection &from) { return rowsOf(transfer, from.rows(transfer.select.c_str())); });
            continue;
        }
        for (const std::int64_t id : accounts)
            visit(transfer,
                  [&](Connection &from) { return rowsOf(transfer, from.rows(transfer.select.c_str(), id)); });
    }
}

} // namespace

const std::vector<Table> &tables()
{
    static const std::vector<Table> all = {
        {.name = "account",
         .columns = {"account_id", "name", "password_hash", "version", "next_set_id", "next_goal_id",
                     "created_at", "goals", "goal_bytes", "deleted_goals", "changes", "seen_on", "disabled",
                     "closed_at"}},
        {.name = "login", .columns = {"login_digest", "account_id"}},
        {.name = "area", .columns = {"account_id", "area_id", "name", "color", "value"}},
        {.name = "goal_set", .columns = {"account_id", "set_id", "name", "deleted_at"}},
        {.name = "goal",
         .columns = {"account_id", "goal_id", "set_id", "area_id", "name", "priority", "checked",
                     "deleted_at"}},
        {.name = "web_session",
         .columns = {"account_id", "token_hash", "account_version", "began_at", "used_at"}},
        {.name = "set_progress", .columns = {"account_id", "set_id", "day", "percents"}},
        {.name = "area_progress",
         .columns = {"account_id", "day", "value1", "value2", "value3", "value4", "value5", "value6",
                     "value7", "value8"}},
        {.name = "purge_clock", .columns = {"seconds"}, .isOfAccounts = false},
        {.name = "invitation", .columns = {"code_hash", "expires_at"}, .isOfAccounts = false},
        {.name = "account_count", .columns = {"accounts"}, .isOfAccounts = false},
        {.name = "secret_proof", .columns = {"proof"}, .isOfAccounts = false},
        {.name = "failure", .columns = {"failure_key", "failed_at"}, .isOfAccounts = false},
        {.name = "refused_save",
         .columns = {"saver", "set_id", "area_id", "kept_until"},
         .isOfAccounts = false}};
    return all;
}

bool isInUse(Connection &connection)
{
    return areLoginsKeyed(connection) || connection.rows("SELECT 1 FROM account LIMIT 1").next();
}

std::int64_t copyAll(Connection &from, Connection &to)
{
    std::int64_t count = 0;
    for (const Transfer &transfer : transfers()) {
        if (!transfer.table->isOfAccounts)
            to.run(transfer.clear.c_str()); // what migrations put there
    }
    visitAll(accountIds(from), [&](const Transfer &transfer, const auto &read) {
        for (const Row &row : read(from)) {
            to.runWith(transfer.insert.c_str(), row);
            ++count;
        }
    });
    return count;
}

std::string firstDifference(Connection &one, Connection &other)
{
    const std::vector<std::int64_t> accounts = accountIds(one);
    if (accounts != accountIds(other))
        return "account";
    std::string different;
    visitAll(accounts, [&](const Transfer &transfer, const auto &read) {
        if (different.empty() && read(one) != read(other))
            different = transfer.table->name;
    });
    return different;
}

} // namespace tarvex::store
