#include "AnswerRecords.h"

#include "AnswerText.h"
#include "Columns.h"
#include "Escaping.h"

namespace {

using Names = std::span<const std::string_view>;
constexpr std::size_t idColumn = 0;
constexpr std::size_t nameColumn = 1;

/// One row of the columns, read by column.
class Row
{
public:
    Row(const Columns &columns, std::size_t index) : m_columns(columns), m_index(index) {}

    qint32 number(std::size_t column) const { return leadingInteger(m_columns.text(column, m_index)); }
    QString text(std::size_t column) const { return QString::fromUtf8(m_columns.text(column, m_index)); }
    QString name() const { return unescapedFromUtf8Wire(m_columns.text(nameColumn, m_index)); }
    bool isYes(std::size_t column) const { return m_columns.text(column, m_index) == "y"; }

private:
    const Columns &m_columns;
    const std::size_t m_index;
};

template<typename List, typename Fill>
bool appendRecords(const QByteArray &answer, Names names, List &records, Fill fill)
{
    const std::optional<Columns> columns = Columns::read(answer, names);
    if (!columns)
        return false;
    const std::size_t count = columns->count(idColumn);
    records.reserve(records.size() + count);
    for (std::size_t i = 0; i < count; ++i) {
        auto record = std::make_shared<typename List::value_type::element_type>();
        fill(Row(*columns, i), *record);
        records.push_back(std::move(record));
    }
    return true;
}

} // namespace

bool appendSets(const QByteArray &answer, TVXSetsList &sets)
{
    static constexpr std::string_view names[] = {"id",       "name",     "percent1", "percent2", "percent3",
                                                 "percent4", "percent5", "percent6", "percent7", "percent8"};
    return appendRecords(answer, names, sets, [](const Row &row, TVXSets &set) {
        set.setIdOfSets(row.number(idColumn));
        set.setName(row.name());
        constexpr std::size_t firstPercent = 2;
        for (int i = 0; i < TVXSets::areaCount; ++i)
            set.setPercentOfArea(i, row.text(firstPercent + static_cast<std::size_t>(i)));
    });
}

bool appendAreas(const QByteArray &answer, TVXAreaList &areas)
{
    static constexpr std::string_view names[] = {"id", "name", "color", "value"};
    return appendRecords(answer, names, areas, [](const Row &row, TVXArea &area) {
        area.setIdOfArea(row.number(idColumn));
        area.setName(row.name());
        area.setColor(row.text(/*column=*/2));
        area.setValueOfArea(row.number(/*column=*/3));
    });
}

bool appendGoalsOfOneArea(const QByteArray &answer, TVXGoalList &goals)
{
    static constexpr std::string_view names[] = {"id", "name", "priority", "checked"};
    return appendRecords(answer, names, goals, [](const Row &row, TVXGoal &goal) {
        goal.setIdOfGoal(row.number(idColumn));
        goal.setNameOfGoal(row.name());
        goal.setPriorityOfGoal(row.number(/*column=*/2));
        goal.setIsChecked(row.isYes(/*column=*/3));
    });
}

bool appendGoalsOfAllAreas(const QByteArray &answer, TVXGoalList &goals)
{
    static constexpr std::string_view names[] = {"id", "name", "area", "priority", "checked"};
    return appendRecords(answer, names, goals, [](const Row &row, TVXGoal &goal) {
        goal.setIdOfGoal(row.number(idColumn));
        goal.setNameOfGoal(row.name());
        goal.setIdOfArea(row.number(/*column=*/2));
        goal.setPriorityOfGoal(row.number(/*column=*/3));
        goal.setIsChecked(row.isYes(/*column=*/4));
    });
}

TVXGoalPtr firstGoal(const QByteArray &answer)
{
    static constexpr std::string_view names[] = {"id", "name", "area"};
    auto goal = std::make_shared<TVXGoal>();
    const std::optional<Columns> columns = Columns::read(answer, names);
    if (!columns) {
        goal->setNameOfGoal(QString());
        return goal;
    }
    const Row row(*columns, /*index=*/0);
    goal->setNameOfGoal(row.name());
    goal->setIdOfGoal(row.number(idColumn));
    goal->setIdOfArea(row.number(/*column=*/2));
    return goal;
}
