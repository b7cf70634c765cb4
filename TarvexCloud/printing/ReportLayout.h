#pragma once

#include "ReportPages.h"
#include "TVXProject.h"
#include "WheelGeometry.h"

#include <vector>

/// One thing to draw, in points, y growing downward from the top of the first page.
struct ReportItem
{
    enum class Kind {
        Title,
        Slice,       ///< the slice `index` of the circle that fills the rectangle
        Value,       ///< the pale sector over it; a rectangle of negative size gives the opposite sector
        Name,        ///< an area's name at the right of the wheel
        NameOnLeft,  ///< one at its left, aligned to the right
        CheckboxOff, ///< a picture that fills the rectangle
        CheckboxOn,
        GoalText,
        AreaText,
        Rule ///< a line from the rectangle's left to its right end; the rectangle has no height
    };

    Kind kind = Kind::Rule;
    QRectF rect;
    QString text = QStringLiteral("");
    int index = 0;
};

using ReportItems = std::vector<ReportItem>;

/// What stands where on the report of one set: its title, the wheel with names round it, and every area with
/// its goals.
///
/// The whole report is laid out at construction, in time proportional to the goals; what meets a page is then
/// found by binary search. The layout keeps the texts and the goals it was made of: a project that changes
/// later does not change it.
class ReportLayout
{
public:
    static constexpr std::size_t areaCount = WheelGeometry::sliceCount;
    static constexpr qreal checkboxSide = 14;

    /// Of more areas than eight the first eight are laid out. A goal of none of them is left out.
    ReportLayout(const TVXProject &project, const QString &title, const ReportLineHeights &lineHeights);

    /// What can be seen on the page, one of countPages, in the order in which it is drawn.
    ReportItems itemsOnPage(const QRectF &page, qint64 countPages) const;

private:
    struct Row
    {
        qint32 y;
        TVXGoalPtr goal;
    };

    struct Section
    {
        QString name;
        QString rating;
        QString percentage;
        qint32 valueOfArea = 0;
        qint32 y = 0;
        std::vector<Row> rows;
    };

    struct Collector;

    /// Returns where the section ends.
    qint32 addSection(const TVXArea &area, const TVXGoalList &goals, qint32 y);
    void collectWheel(Collector &collector) const;
    void collectNames(Collector &collector) const;
    void collectRows(Collector &collector, const Section &section) const;
    void collectHeader(Collector &collector, const Section &section) const;

    QString m_title;
    ReportLineHeights m_lineHeights;
    std::vector<Section> m_sections;
};
