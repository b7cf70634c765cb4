#include "Areas.h"
#include "Call.h"
#include "Handlers.h"
#include "Records.h"
#include "XmlAnswer.h"

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
    std::size_t renamed = 0;
    for (const wire::AreaNameRecord &record : wire::readAreaNameRecords(field))
        renamed += store::renameArea(call.connection, call.accountId, record.areaId, record.name) ? 1U : 0U;
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
