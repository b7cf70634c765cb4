#include "AccountExport.h"

#include "Times.h"

#include <algorithm>
#include <array>

namespace tarvex::wire {

namespace {

/// What begins like a formula, be it in the wide characters of East Asia, or with what is cut off before one.
bool isComputed(std::string_view text)
{
    constexpr std::array<std::string_view, 11> beginnings = {"=",  "+",  "-",  "@",  "\t", "\r",
                                                             "\n", "＝", "＋", "－", "＠"};
    return std::any_of(beginnings.begin(), beginnings.end(),
                       [=](std::string_view beginning) { return text.starts_with(beginning); });
}

/// A text as a field. One that a spreadsheet would compute begins with an apostrophe, which makes it a text.
std::string field(std::string_view text)
{
    std::string quoted = "\"";
    if (isComputed(text))
        quoted += '\'';
    for (const char character : text) {
        if (character == '"')
            quoted += '"';
        quoted += character;
    }
    return quoted + '"';
}

std::string timeField(std::optional<std::int64_t> time)
{
    return time ? utcTime(*time) : "";
}

} // namespace

std::optional<std::string> writeTable(const AccountExport &account)
{
    constexpr const char *lineEnd = "\r\n";
    std::string table = "set,area,goal,priority,done,deleted";
    table += lineEnd;
    for (const AccountExport::Set &set : account.sets) {
        if (set.goals.empty())
            table.append(field(set.name)).append(",,,,,").append(timeField(set.deletedAt)).append(lineEnd);
        for (const AccountExport::Goal &goal : set.goals) {
            const std::string &area = account.areas.at(static_cast<std::size_t>(goal.area - 1)).name;
            table.append(field(set.name)).append(",").append(field(area)).append(",");
            table.append(field(goal.name)).append(",").append(std::to_string(goal.priority)).append(",");
            table.append(goal.isDone ? "yes," : "no,").append(timeField(goal.deletedAt)).append(lineEnd);
            if (table.size() > largestTable)
                return {};
        }
    }
    return table;
}

} // namespace tarvex::wire
