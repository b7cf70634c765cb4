#include "Areas.h"

#include "Progress.h"

namespace tarvex::store {

std::vector<Area> areas(Connection &connection, std::int64_t accountId)
{
    std::vector<Area> found;
    Rows rows = connection.rows(
        "SELECT area_id, name, color, value FROM area WHERE account_id = $1 ORDER BY area_id", accountId);
    while (rows.next())
        found.push_back({.id = rows.number(0),
                         .name = std::string(rows.text(1)),
                         .color = std::string(rows.text(2)),
                         .value = static_cast<std::int32_t>(rows.number(3))});
    return found;
}

bool renameArea(Connection &connection, std::int64_t accountId, std::int64_t areaId, const std::string &name)
{
    return connection.change("UPDATE area SET name = $1 WHERE account_id = $2 AND area_id = $3", name,
                             accountId, areaId) > 0;
}

bool setAreaValue(Connection &connection, std::int64_t accountId, std::int64_t areaId, std::int32_t value,
                  std::int64_t now)
{
    if (connection.change("UPDATE area SET value = $1 WHERE account_id = $2 AND area_id = $3", value,
                          accountId, areaId) == 0)
        return false;
    noteAreaProgress(connection, accountId, now);
    return true;
}

} // namespace tarvex::store
