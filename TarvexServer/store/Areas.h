#pragma once

#include "Connection.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarvex::store {

/// An area of the wheel; its name is wire text.
struct Area
{
    std::int64_t id = 0;
    std::string name;
    std::string color;
    std::int32_t value = 0;
};

/// The account's areas in the order of the wheel.
std::vector<Area> areas(Connection &connection, std::int64_t accountId);

/// Both tell whether the account has such an area. Progress is noted for `now`, in seconds since 1970.
bool renameArea(Connection &connection, std::int64_t accountId, std::int64_t areaId, const std::string &name);
bool setAreaValue(Connection &connection, std::int64_t accountId, std::int64_t areaId, std::int32_t value,
                  std::int64_t now);

} // namespace tarvex::store
