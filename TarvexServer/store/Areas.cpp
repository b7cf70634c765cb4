#include "Areas.h"

#include "Statements.h"

namespace tarvex::store {

std::vector<Area> areas(Connection &connection, std::int64_t accountId)
{
    const long long account = accountId;
    long long id = 0;
    Area area;
    soci::statement rows =
        (connection.session().prepare
             << "SELECT area_id, name, color, value FROM area WHERE account_id = :account ORDER BY area_id",
         soci::use(account), soci::into(id), soci::into(area.name), soci::into(area.color),
         soci::into(area.value));
    std::vector<Area> found;
    rows.execute();
    while (rows.fetch()) {
        area.id = id;
        found.push_back(area);
    }
    return found;
}

bool hasArea(Connection &connection, std::int64_t accountId, std::int64_t areaId)
{
    const long long account = accountId;
    const long long area = areaId;
    long long found = 0;
    connection.session() << "SELECT area_id FROM area WHERE account_id = :account AND area_id = :area",
        soci::use(account), soci::use(area), soci::into(found);
    return connection.session().got_data();
}

bool renameArea(Connection &connection, std::int64_t accountId, std::int64_t areaId, const std::string &name)
{
    const long long account = accountId;
    const long long area = areaId;
    soci::statement update =
        (connection.session().prepare
             << "UPDATE area SET name = :name WHERE account_id = :account AND area_id = :area",
         soci::use(name), soci::use(account), soci::use(area));
    return changesRow(update);
}

bool setAreaValue(Connection &connection, std::int64_t accountId, std::int64_t areaId, std::int32_t value)
{
    const long long account = accountId;
    const long long area = areaId;
    soci::statement update =
        (connection.session().prepare
             << "UPDATE area SET value = :value WHERE account_id = :account AND area_id = :area",
         soci::use(value), soci::use(account), soci::use(area));
    return changesRow(update);
}

} // namespace tarvex::store
