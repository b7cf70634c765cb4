#include "Incidents.h"

namespace tarvex::store {

namespace {

constexpr std::size_t placesPerSaver = 64;
constexpr SavePlace anyPlace{0, 0};

} // namespace

void addFailure(Connection &connection, std::string_view key, std::int64_t at)
{
    connection.change("INSERT INTO failure (failure_key, failed_at) VALUES ($1, $2)", key, at);
}

std::int64_t failuresOf(Connection &connection, std::string_view key, std::int64_t since, std::int64_t now)
{
    Rows found = connection.rows("SELECT COUNT(*) FROM failure"
                                 " WHERE failure_key = $1 AND failed_at > $2 AND failed_at <= $3",
                                 key, since, now);
    return found.next() ? found.number(0) : 0;
}

void addRefusedSave(Connection &connection, std::string_view saver, const SavePlace &place,
                    std::int64_t until)
{
    const bool isMany = refusedSavesOf(connection, saver, /*now=*/0).size() >= placesPerSaver;
    const auto [setId, areaId] = isMany ? anyPlace : place;
    connection.change("INSERT INTO refused_save (saver, set_id, area_id, kept_until) VALUES ($1, $2, $3, $4)"
                      " ON CONFLICT (saver, set_id, area_id) DO UPDATE SET kept_until = excluded.kept_until",
                      saver, setId, areaId, until);
}

std::vector<SavePlace> refusedSavesOf(Connection &connection, std::string_view saver, std::int64_t now)
{
    std::vector<SavePlace> places;
    Rows found = connection.rows(
        "SELECT set_id, area_id FROM refused_save WHERE saver = $1 AND kept_until > $2", saver, now);
    while (found.next())
        places.emplace_back(found.number(0), found.number(1));
    return places;
}

void forgetRefusedSave(Connection &connection, std::string_view saver, const SavePlace &place)
{
    connection.change("DELETE FROM refused_save WHERE saver = $1 AND set_id = $2 AND area_id = $3", saver,
                      place.first, place.second);
}

void forgetIncidents(Connection &connection, std::int64_t failuresUntil, std::int64_t now)
{
    connection.change("DELETE FROM failure WHERE failed_at <= $1 OR failed_at > $2", failuresUntil, now);
    connection.change("DELETE FROM refused_save WHERE kept_until <= $1", now);
}

} // namespace tarvex::store
