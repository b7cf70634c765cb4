// The lists of records and ids that a form carries. Written out again, they read the same.

#include "Fuzz.h"
#include "Records.h"

#include <string>

using namespace tarvex;

namespace {

std::string written(const wire::GoalRecord &goal)
{
    return "name:" + goal.name + ";priority:" + std::to_string(goal.priority) +
           ";checked:" + (goal.isChecked ? "1" : "0") + ";setsId:" + std::to_string(goal.place.setId) +
           ";areaId:" + std::to_string(goal.place.areaId) + ";{_end_}";
}

std::string written(const wire::AreaNameRecord &area)
{
    return "id:" + std::to_string(area.areaId) + ";name:" + area.name + ";{_end_}";
}

std::string written(std::int64_t id)
{
    require(id > 0 && id <= 2'147'483'647, "an id is one of the wire");
    return std::to_string(id) + ";";
}

template<class Read>
void requireSame(std::string_view field, Read read)
{
    const auto all = [read](std::string_view list) {
        std::string text;
        for (const auto &record : read(list))
            text += written(record);
        return text;
    };
    const std::string once = all(field);
    require(all(once) == once, "a list is read again");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    const std::string_view field = viewOf(bytes, size);
    requireSame(field, wire::readGoalRecords);
    requireSame(field, wire::readAreaNameRecords);
    requireSame(field, wire::readIdList);
    wire::goalPlaceHint(field);
    return 0;
}
