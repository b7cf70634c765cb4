#include "Progress.h"

#include <string>

namespace tarvex::store {

namespace {

/// A list of the pattern for each area, whose number stands in the place of "#".
std::string forAreas(const std::string &pattern)
{
    std::string list;
    for (std::size_t area = 1; area <= OfAreas().size(); ++area) {
        list += area > 1 ? ", " : "";
        for (const char character : pattern)
            list += character == '#' ? std::to_string(area) : std::string(1, character);
    }
    return list;
}

// Statements are known by their place: these stand for ever.

constexpr int bitsOfPercent = 7;
constexpr std::int32_t withoutGoals = 100;

/// All areas of a set that has no goals.
constexpr std::int64_t allWithoutGoals = [] {
    std::int64_t percents = 0;
    for (std::size_t i = 0; i < std::tuple_size_v<OfAreas>; ++i)
        percents = percents << bitsOfPercent | withoutGoals;
    return percents;
}();

// The engine counts, so that the writer has nothing to wait for. As in the answers, percents are truncated.
const std::string percentsNow =
    "(SELECT CAST(COALESCE(SUM((percent - 100) * (CAST(1 AS BIGINT) << CAST(7 * (area_id - 1) AS INTEGER))), "
    "0)"
    " AS BIGINT) FROM (SELECT area_id, SUM(checked) * 100 / COUNT(*) AS percent FROM goal"
    " WHERE account_id = $2 AND set_id = $3 AND deleted_at IS NULL GROUP BY area_id) AS done)";

const std::string selectNow = "SELECT CAST($1 AS BIGINT) + " + percentsNow;

const std::string closeDay = "UPDATE set_progress SET percents = $1 + " + percentsNow +
                             " WHERE account_id = $2 AND set_id = $3 AND percents IS NULL"
                             " AND day = (SELECT MAX(day) FROM set_progress"
                             " WHERE account_id = $2 AND set_id = $3 AND day < $4)";

const std::string openDay = "INSERT INTO set_progress (account_id, set_id, day) VALUES ($1, $2, $3)"
                            " ON CONFLICT (account_id, set_id, day) DO UPDATE SET percents = NULL"
                            " WHERE set_progress.percents IS NOT NULL";

const std::string noteAreas =
    "INSERT INTO area_progress (account_id, day, " + forAreas("value#") +
    ") SELECT CAST($1 AS BIGINT), CAST($2 AS BIGINT), " +
    forAreas("COALESCE(MAX(CASE area_id WHEN # THEN value END), 0)") +
    " FROM area WHERE account_id = $1 ON CONFLICT (account_id, day) DO UPDATE SET " +
    forAreas("value# = excluded.value#");

const std::string selectSet =
    "SELECT day, COALESCE(percents, -1) FROM set_progress WHERE account_id = $1 AND set_id = $2"
    " AND EXISTS (SELECT 1 FROM goal_set WHERE account_id = $1 AND set_id = $2 AND deleted_at IS NULL)";

const std::string selectSpan =
    selectSet + " AND day >= COALESCE((SELECT day FROM set_progress"
                " WHERE account_id = $1 AND set_id = $2 AND day <= $3 ORDER BY day DESC LIMIT 1), $3)"
                " AND day <= $4 ORDER BY day";

const std::string selectDay = selectSet + " AND day <= $3 ORDER BY day DESC LIMIT 1";

const std::string selectValues = "SELECT day, " + forAreas("value#") +
                                 " FROM area_progress WHERE account_id = $1 AND day <= $2"
                                 " ORDER BY day DESC LIMIT 1";

std::int64_t countedNow(Connection &connection, std::int64_t accountId, std::int64_t setId)
{
    Rows found = connection.rows(selectNow.c_str(), allWithoutGoals, accountId, setId);
    return found.next() ? found.number(0) : allWithoutGoals;
}

OfAreas unpacked(std::int64_t percents)
{
    OfAreas numbers;
    for (std::int32_t &percent : numbers) {
        percent = static_cast<std::int32_t>(percents & ((1 << bitsOfPercent) - 1));
        percents >>= bitsOfPercent;
    }
    return numbers;
}

/// The days that a statement finds.
std::vector<DayOfAreas> daysOf(Connection &connection, std::int64_t accountId, std::int64_t setId, Rows rows)
{
    std::vector<DayOfAreas> found;
    while (rows.next()) {
        const std::int64_t percents = rows.number(1);
        const bool isOpen = percents < 0;
        found.push_back({.day = rows.number(0),
                         .numbers = unpacked(isOpen ? countedNow(connection, accountId, setId) : percents)});
    }
    return found;
}

DayOfAreas dayOfValues(const Rows &row)
{
    DayOfAreas found{.day = row.number(0)};
    int column = 0;
    for (std::int32_t &value : found.numbers)
        value = static_cast<std::int32_t>(row.number(++column));
    return found;
}

} // namespace

void noteSetProgress(Connection &connection, std::int64_t accountId, std::int64_t setId, std::int64_t now)
{
    const std::int64_t today = dayOf(now);
    connection.run(closeDay.c_str(), allWithoutGoals, accountId, setId, today);
    connection.run(openDay.c_str(), accountId, setId, today);
}

void endSetProgress(Connection &connection, std::int64_t accountId, std::int64_t setId, std::int64_t now)
{
    connection.run(closeDay.c_str(), allWithoutGoals, accountId, setId, dayOf(now) + 1);
}

void noteAreaProgress(Connection &connection, std::int64_t accountId, std::int64_t now)
{
    connection.run(noteAreas.c_str(), accountId, dayOf(now));
}

std::vector<DayOfAreas> setProgress(Connection &connection, std::int64_t accountId, std::int64_t setId,
                                    std::int64_t firstDay, std::int64_t lastDay)
{
    return daysOf(connection, accountId, setId,
                  connection.rows(selectSpan.c_str(), accountId, setId, firstDay, lastDay));
}

std::optional<DayOfAreas> percentsOn(Connection &connection, std::int64_t accountId, std::int64_t setId,
                                     std::int64_t day)
{
    const auto found =
        daysOf(connection, accountId, setId, connection.rows(selectDay.c_str(), accountId, setId, day));
    return found.empty() ? std::nullopt : std::optional(found.front());
}

std::optional<DayOfAreas> valuesOn(Connection &connection, std::int64_t accountId, std::int64_t day)
{
    Rows found = connection.rows(selectValues.c_str(), accountId, day);
    return found.next() ? std::optional(dayOfValues(found)) : std::nullopt;
}

} // namespace tarvex::store
