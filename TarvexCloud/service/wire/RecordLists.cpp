#include "RecordLists.h"

#include "Escaping.h"
#include "FormString.h"

using namespace Qt::StringLiterals;

constexpr QLatin1StringView endMark = ";{_end_}"_L1;

void appendGoalRecords(QString &text, const TVXGoalList &goals, qint64 setsId, qint64 areaId)
{
    const QString place = u";setsId:"_s + formNumber(setsId) + u";areaId:"_s + formNumber(areaId) + endMark;
    constexpr qsizetype usualNameAndNumbers = 80;
    text.reserve(text.size() + static_cast<qsizetype>(goals.size()) * (place.size() + usualNameAndNumbers));
    for (const TVXGoalPtr &goal : goals) {
        text += "name:"_L1;
        text += escapedForWire(goal->nameOfGoal());
        text += ";priority:"_L1;
        text += QString::number(goal->priorityOfGoal());
        text += goal->isChecked() ? ";checked:1"_L1 : ";checked:0"_L1;
        text += place;
    }
}

QString areaNameRecords(const TVXAreaList &areas)
{
    QString records;
    for (const TVXAreaPtr &area : areas)
        records +=
            "id:"_L1 + formNumber(area->idOfArea()) + ";name:"_L1 + escapedForWire(area->name()) + endMark;
    return records;
}

QString idRecords(const std::vector<qint64> &ids)
{
    QString records;
    for (const qint64 id : ids)
        records += QString::number(id) + u';';
    return records;
}
