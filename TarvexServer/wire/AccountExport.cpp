#include "AccountExport.h"

#include "Times.h"

#include <algorithm>
#include <boost/json.hpp>
#include <limits>

namespace tarvex::wire {

namespace {

namespace json = boost::json;

constexpr std::string_view formatName = "tarvex-account";
constexpr std::int64_t formatVersion = 1;
constexpr std::size_t deepest = 8; // of which an export takes five
/// More of these than any account has; each one takes memory.
constexpr std::ptrdiff_t mostValues = 4'000'000;

std::string quoted(std::string_view text)
{
    return json::serialize(json::string(text.data(), text.size()));
}

std::string deletion(std::optional<std::int64_t> time)
{
    return time ? R"(, "deleted": ")" + utcTime(*time) + "\"" : "";
}

std::string written(const AccountExport::Area &area)
{
    return R"({"name": )" + quoted(area.name) + R"(, "value": )" + std::to_string(area.value) + "}";
}

std::string written(const AccountExport::Goal &goal)
{
    return R"({"area": )" + std::to_string(goal.area) + R"(, "name": )" + quoted(goal.name) +
           R"(, "priority": )" + std::to_string(goal.priority) + R"(, "done": )" +
           (goal.isDone ? "true" : "false") + deletion(goal.deletedAt) + "}";
}

template<class Values>
std::string listed(const Values &values, const std::string &indent);

std::string written(const AccountExport::Set &set)
{
    return R"({"name": )" + quoted(set.name) + deletion(set.deletedAt) + R"(, "goals": )" +
           listed(set.goals, "    ") + "}";
}

template<class Values>
std::string listed(const Values &values, const std::string &indent)
{
    std::string list;
    for (const auto &value : values)
        list.append(list.empty() ? "[\n" : ",\n").append(indent).append("  ").append(written(value));
    return list.empty() ? "[]" : list + "\n" + indent + "]";
}

/// Where a value stands in an export, for whoever has to mend it: "sets[2].goals[7].name", counted from
/// 0 as programs that read JSON do.
class Place
{
public:
    Place() = default;
    Place member(const std::string &name) const
    {
        return Place(m_words.empty() ? name : m_words + "." + name);
    }
    Place item(std::size_t index) const { return Place(m_words + "[" + std::to_string(index) + "]"); }

    [[noreturn]] void fail(const std::string &fault) const
    {
        throw ExportDamaged("The export cannot be read: " + (m_words.empty() ? "it" : m_words) + " " + fault +
                            ".");
    }

private:
    explicit Place(std::string words) : m_words(std::move(words)) {}

    std::string m_words;
};

/// A value of an export, which must be what it is taken for.
class Reader
{
public:
    explicit Reader(const json::value &value, Place place = {}) : m_value(value), m_place(std::move(place)) {}

    const Place &place() const { return m_place; }
    bool has(const char *name) const { return object().contains(name); }
    Reader member(const char *name) const
    {
        const json::value *found = object().if_contains(name);
        if (found == nullptr)
            m_place.member(name).fail("is missing");
        return Reader(*found, m_place.member(name));
    }
    std::vector<Reader> items() const
    {
        if (!m_value.is_array())
            m_place.fail("must be a list");
        std::vector<Reader> readers;
        readers.reserve(m_value.get_array().size());
        for (const json::value &item : m_value.get_array())
            readers.emplace_back(item, m_place.item(readers.size()));
        return readers;
    }
    std::string text() const
    {
        if (!m_value.is_string())
            m_place.fail("must be a text");
        return json::value_to<std::string>(m_value);
    }
    bool truth() const
    {
        if (!m_value.is_bool())
            m_place.fail("must be true or false");
        return m_value.get_bool();
    }
    std::int32_t number() const
    {
        using Limits = std::numeric_limits<std::int32_t>;
        if (!m_value.is_int64() || m_value.get_int64() < Limits::min() || m_value.get_int64() > Limits::max())
            m_place.fail("must be a whole number of 32 bits");
        return static_cast<std::int32_t>(m_value.get_int64());
    }

private:
    const json::object &object() const
    {
        if (!m_value.is_object())
            m_place.fail("must be an object");
        return m_value.get_object();
    }

    const json::value &m_value;
    Place m_place;
};

json::value parsed(std::string_view text)
{
    if (text.size() > largestExport)
        throw ExportDamaged("The export cannot be read: it is larger than 32 MiB.");
    const auto isSeparator = [](char c) { return c == ',' || c == '[' || c == '{'; };
    if (std::count_if(text.begin(), text.end(), isSeparator) > mostValues)
        throw ExportDamaged("The export cannot be read: it holds more than any account.");
    json::stream_parser parser(json::storage_ptr(), json::parse_options{.max_depth = deepest});
    json::error_code error;
    const std::size_t read = parser.write(text.data(), text.size(), error);
    if (!error)
        parser.finish(error);
    if (!error)
        return parser.release();
    const auto line = std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(read), '\n') + 1;
    throw ExportDamaged("The export cannot be read: line " + std::to_string(line) + " is no JSON (" +
                        error.message() + ").");
}

AccountExport::Area areaOf(const Reader &reader)
{
    return {.name = reader.member("name").text(), .value = reader.member("value").number()};
}

AccountExport::Goal goalOf(const Reader &reader, std::size_t areaCount)
{
    const Reader area = reader.member("area");
    if (area.number() < 1 || static_cast<std::size_t>(area.number()) > areaCount)
        area.place().fail("must be the number of an area, from 1");
    return {.area = area.number(),
            .name = reader.member("name").text(),
            .priority = reader.member("priority").number(),
            .isDone = reader.member("done").truth()};
}

AccountExport::Set setOf(const Reader &reader, std::size_t areaCount)
{
    AccountExport::Set set{.name = reader.member("name").text()};
    for (const Reader &goal : reader.member("goals").items()) {
        if (!goal.has("deleted"))
            set.goals.push_back(goalOf(goal, areaCount));
    }
    return set;
}

} // namespace

std::string writeExport(const AccountExport &account)
{
    return R"({"format": ")" + std::string(formatName) + R"(", "version": )" + std::to_string(formatVersion) +
           ",\n  \"name\": " + quoted(account.name) + ",\n  \"areas\": " + listed(account.areas, "  ") +
           ",\n  \"sets\": " + listed(account.sets, "  ") + "}\n";
}

AccountExport readExport(std::string_view text)
{
    const json::value document = parsed(text);
    const Reader reader(document);
    if (!reader.has("format") || reader.member("format").text() != formatName)
        throw ExportDamaged("The file is no export of an account.");
    if (reader.member("version").number() != formatVersion)
        reader.member("version").place().fail("is not one that this tarvex-server knows");
    AccountExport account{.name = reader.member("name").text(), .areas = {}, .sets = {}};
    for (const Reader &area : reader.member("areas").items())
        account.areas.push_back(areaOf(area));
    for (const Reader &set : reader.member("sets").items()) {
        if (!set.has("deleted"))
            account.sets.push_back(setOf(set, account.areas.size()));
    }
    return account;
}

} // namespace tarvex::wire
