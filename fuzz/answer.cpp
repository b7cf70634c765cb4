// The service's names and answers, as the client reads them: what is stored comes back as it was.

#include "Columns.h"
#include "Fuzz.h"
#include "WireText.h"
#include "XmlAnswer.h"

#include <array>

using namespace tarvex;

int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    constexpr std::array<std::string_view, 2> elements = {"id", "name"};
    const auto name = wire::storableName(viewOf(bytes, size));
    if (!name)
        return 0;
    require(wire::storableName(*name) == name, "what is stored can be stored again");
    wire::XmlAnswer answer;
    for (std::int64_t id = 1; id <= 2; ++id) {
        answer.beginRecord();
        answer.element("id", id);
        answer.element("name", *name);
        answer.endRecord();
    }
    const std::string document = answer.finish();
    const auto columns = Columns::read(QByteArrayView(document.data(), qsizetype(document.size())), elements);
    require(columns && columns->count(1) == 2, "the client reads every record");
    require(columns->text(/*column=*/0, /*index=*/1) == "2" &&
                columns->text(/*column=*/1, /*index=*/1) == *name,
            "and every name as it was");
    return 0;
}
