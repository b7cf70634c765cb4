#include "Areas.h"

#include "Statements.h"

namespace tarvex::store {

std::vector<Area> areas(Connection &connection, std::int64_t accountId)
{
    Area area;
    soci::statement rows =
        (connection.prepare
             << "SELECT area_id, name, color, value FROM area WHERE account_id = :account ORDER BY area_id",
         soci::use(accountId), soci::into(area.id), soci::into(area.name), soci::into(area.color),
         soci::into(area.value));
    std::vector<Area> found;
    rows.execute();
    while (rows.fetch())
        found.push_back(area);
    return found;
}

bool hasArea(Connection &connection, std::int64_t accountId, std::int64_t areaId)
{
    std::int64_t found = 0;
    connection << "SELECT area_id FROM area WHERE account_id = :account AND area_id = :area",
        soci::use(accountId), soci::use(areaId), soci::into(found);
    return connection.got_data();
}

bool renameArea(Connection &connection, std::int64_t accountId, std::int64_t areaId, const std::string &name)
{
    return changesRow(connection,
                      "UPDATE area SET name = :name WHERE account_id = :account AND area_id = :area", name,
                      accountId, areaId);
}

bool setAreaValue(Connection &connection, std::int64_t accountId, std::int64_t areaId, std::int32_t value)
{
    return changesRow(connection,
                      "UPDATE area SET value = :value WHERE account_id = :account AND area_id = :area", value,
                      accountId, areaId);
}

} // namespace tarvex::store
