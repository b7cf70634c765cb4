#include "Records.h"

#include "Decimal.h"
#include "WireText.h"

#include <algorithm>
#include <thread>

namespace tarvex::wire {

namespace {

constexpr std::string_view endMark = "{_end_}";

/// Takes a record apart from the front; every take fails softly.
class RecordCursor
{
public:
    explicit RecordCursor(std::string_view text) : m_rest(text) {}

    std::string_view rest() const { return m_rest; }

    bool takeText(std::string_view text)
    {
        if (!m_rest.starts_with(text))
            return false;
        m_rest.remove_prefix(text.size());
        return true;
    }

    /// "key:value;" where the value holds neither separator, as the escaping of names guarantees.
    template<class Value>
    std::optional<Value> takeField(std::string_view key, std::optional<Value> (*read)(std::string_view))
    {
        if (!takeText(key))
            return {};
        const auto isSeparator = [](char character) { return character == ';' || character == ':'; };
        const auto found = std::find_if(m_rest.begin(), m_rest.end(), isSeparator);
        if (found == m_rest.end() || *found != ';')
            return {};
        const auto end = static_cast<std::size_t>(found - m_rest.begin());
        const std::string_view value = m_rest.substr(0, end);
        m_rest.remove_prefix(end + 1);
        return read(value);
    }

private:
    std::string_view m_rest;
};

std::optional<GoalRecord> takeGoalRecord(RecordCursor &cursor)
{
    const auto name = cursor.takeField("name:", storableName);
    const auto priority = name ? cursor.takeField("priority:", decimal32) : std::nullopt;
    const auto checked = priority ? cursor.takeField("checked:", decimal32) : std::nullopt;
    const auto setId = checked ? cursor.takeField("setsId:", wireId) : std::nullopt;
    const auto areaId = setId ? cursor.takeField("areaId:", wireId) : std::nullopt;
    if (!areaId || *checked < 0 || *checked > 1 || !cursor.takeText(endMark))
        return {};
    return GoalRecord{.name = *name,
                      .priority = *priority,
                      .isChecked = *checked == 1,
                      .place = {.setId = *setId, .areaId = *areaId}};
}

std::optional<AreaNameRecord> takeAreaNameRecord(RecordCursor &cursor)
{
    const auto areaId = cursor.takeField("id:", wireId);
    const auto name = areaId ? cursor.takeField("name:", storableName) : std::nullopt;
    if (!name || !cursor.takeText(endMark))
        return {};
    return AreaNameRecord{.areaId = *areaId, .name = *name};
}

/// The text behind the next end mark that another record follows; empty if there is none.
std::string_view behindBrokenRecord(std::string_view text, std::string_view firstKey)
{
    for (auto mark = text.find(endMark); mark != std::string_view::npos; mark = text.find(endMark)) {
        text.remove_prefix(mark + endMark.size());
        if (text.starts_with(firstKey))
            return text;
    }
    return {};
}

/// Reading megabytes takes milliseconds, and a kernel may interrupt nobody before its next tick, which is as
/// long: so the thread itself offers its core to short requests, each time it has come a piece further.
void giveWay(std::string_view before, std::string_view left)
{
    constexpr std::size_t piece = 64UL * 1024; // bytes, some 100 us
    if (before.size() / piece != left.size() / piece)
        std::this_thread::yield();
}

// Linear in the field: every attempt begins with a key, whose ":" ends the look for a value in any attempt
// before.
template<class Record>
std::vector<Record> readRecords(std::string_view field, std::string_view firstKey,
                                std::optional<Record> (*takeRecord)(RecordCursor &))
{
    std::vector<Record> records;
    while (!field.empty()) {
        const std::string_view before = field;
        RecordCursor cursor(field);
        if (auto record = takeRecord(cursor)) {
            records.push_back(std::move(*record));
            field = cursor.rest();
        } else {
            field = behindBrokenRecord(field, firstKey);
        }
        giveWay(before, field);
    }
    return records;
}

} // namespace

std::vector<GoalRecord> readGoalRecords(std::string_view field)
{
    return readRecords<GoalRecord>(field, /*firstKey=*/"name:", takeGoalRecord);
}

std::vector<AreaNameRecord> readAreaNameRecords(std::string_view field)
{
    return readRecords<AreaNameRecord>(field, /*firstKey=*/"id:", takeAreaNameRecord);
}

std::vector<std::int64_t> readIdList(std::string_view field)
{
    std::vector<std::int64_t> ids;
    for (auto end = field.find(';'); end != std::string_view::npos; end = field.find(';')) {
        if (const auto id = wireId(field.substr(0, end)))
            ids.push_back(*id);
        const std::string_view before = field;
        field.remove_prefix(end + 1);
        giveWay(before, field);
    }
    return ids;
}

std::optional<GoalPlace> goalPlaceHint(std::string_view field)
{
    constexpr std::string_view key = "setsId:";
    const auto start = field.find(key);
    if (start == std::string_view::npos)
        return {};
    RecordCursor cursor(field.substr(start));
    const auto setId = cursor.takeField(key, wireId);
    const auto areaId = setId ? cursor.takeField("areaId:", wireId) : std::nullopt;
    if (!areaId)
        return {};
    return GoalPlace{.setId = *setId, .areaId = *areaId};
}

} // namespace tarvex::wire
