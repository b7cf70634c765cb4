#include "Areas.h"
#include "Call.h"
#include "Goals.h"
#include "Handlers.h"
#include "Sets.h"
#include "XmlAnswer.h"

#include <map>

namespace tarvex::requests {

std::string getSets(Call &call)
{
    const std::vector<store::Area> areas = store::areas(call.connection, call.accountId);
    std::map<wire::GoalPlace, std::int64_t> percents;
    for (const store::GoalCount &count : store::goalCounts(call.connection, call.accountId))
        percents[{.setId = count.setId, .areaId = count.areaId}] = donePercent(count.checked, count.count);
    wire::XmlAnswer answer;
    for (const store::Set &set : store::sets(call.connection, call.accountId)) {
        answer.beginRecord();
        answer.element("id", set.id);
        answer.element("name", set.name);
        for (std::size_t i = 0; i < areas.size(); ++i) {
            const wire::GoalPlace place{.setId = set.id, .areaId = areas[i].id};
            const auto percent = percents.try_emplace(place, donePercent(/*checked=*/0, /*count=*/0)).first;
            answer.element("percent" + std::to_string(i + 1), percent->second);
        }
        answer.endRecord();
    }
    return answer.finish();
}

std::string createSets(Call &call)
{
    store::createSet(call.connection, call.accountId, nameField(call, /*number=*/4), call.now);
    return done();
}

std::string setSetsName(Call &call)
{
    const std::string name = nameField(call, /*number=*/4);
    require(store::renameSet(call.connection, call.accountId, idField(call, /*number=*/5), name));
    return done();
}

std::string deleteSets(Call &call)
{
    require(store::deleteSet(call.connection, call.accountId, idField(call, /*number=*/4), call.now));
    return done();
}

} // namespace tarvex::requests
