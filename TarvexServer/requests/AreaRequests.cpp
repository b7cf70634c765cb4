#include "Areas.h"
#include "Call.h"
#include "Handlers.h"
#include "Records.h"
#include "XmlAnswer.h"

#include <map>
#include <utility>

namespace tarvex::requests {

std::string getAreas(Call &call)
{
    wire::XmlAnswer answer;
    for (const store::Area &area : store::areas(call.connection, call.accountId)) {
        answer.beginRecord();
        answer.element("id", area.id);
        answer.element("name", area.name);
        answer.element("color", area.color);
        answer.element("value", area.value);
        answer.endRecord();
    }
    return answer.finish();
}

std::string setAreaNames(Call &call)
{
    const std::string_view field = textField(call, /*number=*/4);
    std::map<std::int64_t, std::string> names; // the last of each, of however many that are sent
    for (wire::AreaNameRecord &record : wire::readAreaNameRecords(field))
        names[record.areaId] = std::move(record.name);
    std::size_t renamed = 0;
    for (const store::Area &area : store::areas(call.connection, call.accountId))
        if (const auto name = names.find(area.id); name != names.end())
            renamed += store::renameArea(call.connection, call.accountId, area.id, name->second) ? 1U : 0U;
    require(renamed > 0 || field.empty());
    return done();
}

std::string setAreaValue(Call &call)
{
    const std::int64_t areaId = idField(call, /*number=*/4);
    const std::int32_t value = numberField(call, /*number=*/5);
    require(store::setAreaValue(call.connection, call.accountId, areaId, value, call.now));
    return done();
}

} // namespace tarvex::requests
