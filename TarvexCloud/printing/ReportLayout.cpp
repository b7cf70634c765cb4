#include "ReportLayout.h"

#include "WheelGeometry.h"
#include "Words.h"

#include <algorithm>
#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace {
constexpr qreal ratingColumn = 300;
constexpr qreal percentageColumn = 500;
constexpr qreal priorityColumn = 30;
constexpr qreal goalColumn = 80;

constexpr qint32 checkboxDrop = 4;

constexpr qreal wheelCentreY = 170;
constexpr qreal wheelRadius = 110;
constexpr quint32 radiusPerValue = 11;

struct NamePlace
{
    std::size_t area;
    qint32 x; // from the wheel's centre
    qint32 y;
    ReportItem::Kind kind;
};
constexpr qreal nameWidth = 150;
constexpr std::array namePlaces = {NamePlace{0, 90, 60, ReportItem::Kind::Name},
                                   NamePlace{1, 130, 120, ReportItem::Kind::Name},
                                   NamePlace{2, 130, 200, ReportItem::Kind::Name},
                                   NamePlace{3, 90, 260, ReportItem::Kind::Name},
                                   NamePlace{7, -240, 60, ReportItem::Kind::NameOnLeft},
                                   NamePlace{6, -280, 120, ReportItem::Kind::NameOnLeft},
                                   NamePlace{5, -280, 200, ReportItem::Kind::NameOnLeft},
                                   NamePlace{4, -240, 260, ReportItem::Kind::NameOnLeft}};

qint32 truncated(float number)
{
    constexpr float limit = 2147483648.0F;
    if (!(number > -limit))
        return std::numeric_limits<qint32>::min();
    return number < limit ? static_cast<qint32>(number) : std::numeric_limits<qint32>::max();
}

// Each step down the page is a whole number of points, cut after an addition in single precision.
qint32 below(qint32 y, float height)
{
    return truncated(static_cast<float>(y) + height);
}

template<typename List>
const List &listOrNone(const std::shared_ptr<List> &list)
{
    static const List none;
    return list ? *list : none;
}
} // namespace

/// Keeps the items that lie between two heights.
struct ReportLayout::Collector
{
    QRectF page;
    qreal top;
    qreal bottom;
    ReportItems items = {};

    void add(ReportItem::Kind kind, const QRectF &rect, const QString &text = u""_s, int index = 0)
    {
        const QRectF covered = rect.normalized();
        if (covered.bottom() >= top && covered.top() <= bottom)
            items.push_back({kind, rect, text, index});
    }
    /// A line of text as wide as the page, from a column on; its end may lie beyond the page's edge.
    void addText(ReportItem::Kind kind, qreal column, qreal y, float height, const QString &text)
    {
        add(kind, QRectF(page.x() + column, y, page.width(), static_cast<qreal>(height)), text);
    }
};

ReportLayout::ReportLayout(const TVXProject &project, const QString &title,
                           const ReportLineHeights &lineHeights)
    : m_title(title), m_lineHeights(lineHeights)
{
    const TVXAreaList &areas = listOrNone(project.areas());
    const std::size_t count = std::min(areas.size(), areaCount);
    std::array<TVXGoalList, areaCount> goalsOfAreas;
    for (const TVXGoalPtr &goal : listOrNone(project.goals()))
        for (std::size_t i = 0; i < count; ++i)
            if (goal->idOfArea() == areas[i]->idOfArea())
                goalsOfAreas[i].push_back(goal);

    qint32 y = ReportPages::topOfAreaList;
    for (std::size_t i = 0; i < count; ++i)
        y = below(addSection(*areas[i], goalsOfAreas[i], y), m_lineHeights.goal);
}

qint32 ReportLayout::addSection(const TVXArea &area, const TVXGoalList &goals, qint32 y)
{
    Section section;
    section.name = area.name();
    section.rating = Words::rating(area.valueOfArea());
    section.percentage = QString::number(percentDone(goals)) + u'%';
    section.valueOfArea = area.valueOfArea();
    section.y = y;
    section.rows.reserve(goals.size());
    qint32 rowY = below(y, m_lineHeights.area);
    for (const TVXGoalPtr &goal : goals) {
        section.rows.push_back({rowY, goal});
        rowY = below(rowY, m_lineHeights.goal);
    }
    m_sections.push_back(std::move(section));
    return rowY;
}

ReportItems ReportLayout::itemsOnPage(const QRectF &page, qint64 countPages) const
{
    constexpr qreal softEdge = 2; // lines are wider than their rectangle, and edges are smoothed
    Collector collector = {page, page.top() - softEdge, page.bottom() + softEdge};
    collector.addText(ReportItem::Kind::Title, /*column=*/0, /*y=*/0, m_lineHeights.title, m_title);
    collectWheel(collector);
    collectNames(collector);
    for (const Section &section : m_sections) {
        collectRows(collector, section);
        collectHeader(collector, section);
    }
    const qreal end = static_cast<qreal>(countPages) * page.height();
    collector.add(ReportItem::Kind::Rule, QRectF(page.x(), end, page.width(), 0));
    return std::move(collector.items);
}

void ReportLayout::collectWheel(Collector &collector) const
{
    const QRectF &page = collector.page;
    const QPointF centre(page.width() / 2, wheelCentreY);
    // Only title and slices are drawn before the pale sectors; a radius that covers both covers all it can.
    const qreal reach = WheelGeometry::reach(centre, QSizeF(page.right(), wheelCentreY + wheelRadius));
    for (std::size_t i = 0; i < areaCount; ++i) {
        const auto index = static_cast<int>(i);
        collector.add(ReportItem::Kind::Slice, WheelGeometry::squareAround(centre, wheelRadius), QString(),
                      index);
        if (i >= m_sections.size())
            continue;
        const auto value = static_cast<quint32>(m_sections[i].valueOfArea);
        const auto radius = static_cast<qint32>(radiusPerValue * value);
        const QRectF square = WheelGeometry::squareAround(centre, std::clamp<qreal>(radius, -reach, reach));
        collector.add(ReportItem::Kind::Value, square, QString(), index);
    }
}

void ReportLayout::collectNames(Collector &collector) const
{
    const qreal centre = std::trunc(collector.page.width() / 2);
    for (const NamePlace &place : namePlaces)
        if (place.area < m_sections.size())
            collector.add(
                place.kind,
                QRectF(centre + place.x, place.y, nameWidth, static_cast<qreal>(m_lineHeights.goal)),
                m_sections[place.area].name);
}

void ReportLayout::collectRows(Collector &collector, const Section &section) const
{
    const qreal rowHeight = std::max<qreal>(m_lineHeights.goal, checkboxDrop + checkboxSide);
    const auto isAbove = [&](const Row &row) { return row.y + rowHeight < collector.top; };
    auto row = std::partition_point(section.rows.begin(), section.rows.end(), isAbove);
    for (; row != section.rows.end() && row->y <= collector.bottom; ++row) {
        const TVXGoal &goal = *row->goal;
        const qreal y = row->y;
        collector.add(goal.isChecked() ? ReportItem::Kind::CheckboxOn : ReportItem::Kind::CheckboxOff,
                      QRectF(collector.page.x(), y + checkboxDrop, checkboxSide, checkboxSide));
        collector.addText(ReportItem::Kind::GoalText, priorityColumn, y, m_lineHeights.goal,
                          Words::priority(goal.priorityOfGoal()));
        collector.addText(ReportItem::Kind::GoalText, goalColumn, y, m_lineHeights.goal, goal.nameOfGoal());
    }
}

void ReportLayout::collectHeader(Collector &collector, const Section &section) const
{
    const auto add = [&](qreal column, const QString &text) {
        collector.addText(ReportItem::Kind::AreaText, column, section.y, m_lineHeights.area, text);
    };
    add(/*column=*/0, section.name);
    add(ratingColumn, section.rating);
    add(percentageColumn, section.percentage);
    const float rule = static_cast<float>(section.y) + m_lineHeights.area;
    collector.add(ReportItem::Kind::Rule,
                  QRectF(collector.page.x(), static_cast<qreal>(rule), collector.page.width(), 0));
}
