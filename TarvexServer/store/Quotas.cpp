#include "Quotas.h"

#include "StoreError.h"

#include <algorithm>
#include <limits>

namespace tarvex::store {

namespace {

/// The row that a query brings about an account.
Rows only(Rows rows)
{
    if (!rows.next())
        throw TransactionFailed("the account is gone");
    return rows;
}

std::int64_t requireForWire(std::int64_t lastId)
{
    if (lastId > std::numeric_limits<std::int32_t>::max())
        throw TransactionFailed("the account has used up its ids");
    return lastId;
}

struct SetCounts
{
    std::int64_t all = 0;
    std::int64_t live = 0;
};

SetCounts countSets(Connection &connection, std::int64_t accountId)
{
    const Rows held = only(connection.rows(
        "SELECT COUNT(*), COUNT(*) - COUNT(deleted_at) FROM goal_set WHERE account_id = $1", accountId));
    return {.all = held.number(0), .live = held.number(1)};
}

/// What the account holds, exactly, with so much that is about to be added.
void requireRoom(Connection &connection, std::int64_t accountId, std::int64_t count, std::int64_t bytes)
{
    const auto [goals, goalBytes] = [&] {
        const Rows held =
            only(connection.rows("SELECT COUNT(*), COALESCE(SUM(OCTET_LENGTH(name)), 0) FROM goal"
                                 " WHERE account_id = $1 AND deleted_at IS NULL",
                                 accountId));
        return std::pair(held.number(0) + count, held.number(1) + bytes);
    }();
    if (goals > Quotas::goals || goalBytes > Quotas::goalBytes)
        throw QuotaExceeded();
    connection.change("UPDATE account SET goals = $1, goal_bytes = $2 WHERE account_id = $3", goals,
                      goalBytes, accountId);
}

/// Removes those of the account's deleted goals that were deleted first, as far as their names are too much.
void boundDeletedNames(Connection &connection, std::int64_t accountId)
{
    connection.run(
        "DELETE FROM goal WHERE account_id = $1 AND goal_id IN (SELECT goal_id FROM (SELECT goal_id,"
        " SUM(OCTET_LENGTH(name)) OVER (ORDER BY deleted_at DESC, goal_id DESC) AS bytes FROM goal"
        " WHERE account_id = $1 AND deleted_at IS NOT NULL) AS newest WHERE bytes > $2)",
        accountId, Quotas::deletedBytes);
}

} // namespace

void requireSetRoom(Connection &connection, std::int64_t accountId)
{
    if (countSets(connection, accountId).live >= Quotas::sets)
        throw QuotaExceeded();
}

void requireSetNameRoom(Connection &connection, std::int64_t accountId)
{
    const Rows held = only(connection.rows(
        "SELECT COALESCE(SUM(OCTET_LENGTH(name)), 0) FROM goal_set WHERE account_id = $1", accountId));
    if (held.number(0) > Quotas::setNameBytes)
        throw QuotaExceeded();
}

std::int64_t takeSetId(Connection &connection, std::int64_t accountId)
{
    const SetCounts held = countSets(connection, accountId);
    if (held.all >= Quotas::setsWithDeleted || held.live >= Quotas::sets)
        throw QuotaExceeded();
    const Rows taken = only(connection.rows("UPDATE account SET next_set_id = next_set_id + 1"
                                            " WHERE account_id = $1 RETURNING next_set_id",
                                            accountId));
    return requireForWire(taken.number(0) - 1);
}

std::int64_t takeGoalIds(Connection &connection, std::int64_t accountId, std::int64_t count,
                         std::int64_t bytes)
{
    const auto [last, isTooMuch] = [&] {
        // Not by RETURNING, for which SQLite makes a table aside.
        connection.run("UPDATE account SET next_goal_id = next_goal_id + $1, goals = goals + $1,"
                       " goal_bytes = goal_bytes + $2 WHERE account_id = $3",
                       count, bytes, accountId);
        const Rows taken = only(connection.rows(
            "SELECT next_goal_id, goals, goal_bytes FROM account WHERE account_id = $1", accountId));
        return std::pair(taken.number(0) - 1,
                         taken.number(1) > Quotas::goals || taken.number(2) > Quotas::goalBytes);
    }();
    if (isTooMuch) {
        requireRoom(connection, accountId, count, bytes);
        boundDeletedNames(connection, accountId); // all that is deleted was added before
    }
    return requireForWire(last) - count + 1;
}

void countUndeleted(Connection &connection, std::int64_t accountId, std::int64_t count, std::int64_t bytes)
{
    const bool isTooMuch = [&] {
        const Rows counted =
            only(connection.rows("UPDATE account SET goals = goals + $1, goal_bytes = goal_bytes + $2,"
                                 " deleted_goals = deleted_goals - $1"
                                 " WHERE account_id = $3 RETURNING goals, goal_bytes",
                                 count, bytes, accountId));
        return counted.number(0) > Quotas::goals || counted.number(1) > Quotas::goalBytes;
    }();
    if (isTooMuch)
        requireRoom(connection, accountId, count, bytes);
}

void countDeleted(Connection &connection, std::int64_t accountId, std::int64_t count)
{
    const std::int64_t counted = only(connection.rows("UPDATE account SET deleted_goals = deleted_goals + $1"
                                                      " WHERE account_id = $2 RETURNING deleted_goals",
                                                      count, accountId))
                                     .number(0);
    if (counted <= Quotas::deletedGoals)
        return;
    const std::int64_t held = only(connection.rows("SELECT COUNT(*) FROM goal"
                                                   " WHERE account_id = $1 AND deleted_at IS NOT NULL",
                                                   accountId))
                                  .number(0);
    // As many again as are new: an account pays for itself, and a larger one comes down step by step.
    const std::int64_t excess = std::clamp<std::int64_t>(held - Quotas::deletedGoals, 0, 2 * count);
    connection.change("DELETE FROM goal WHERE account_id = $1 AND goal_id IN (SELECT goal_id FROM goal"
                      " WHERE account_id = $1 AND deleted_at IS NOT NULL ORDER BY deleted_at LIMIT $2)",
                      accountId, excess);
    connection.change("UPDATE account SET deleted_goals = $1 WHERE account_id = $2", held - excess,
                      accountId);
}

} // namespace tarvex::store
