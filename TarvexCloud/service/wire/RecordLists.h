#pragma once

#include "TVXArea.h"
#include "TVXGoal.h"

/// Several records in one form field. Every record closes with its own end mark, so an empty list is an empty
/// text. Names are escaped; the end mark is made of characters that the escaping leaves alone, and a name
/// that holds it goes out as it is.

/// "name:...;priority:...;checked:...;setsId:...;areaId:...;{_end_}", the same set and area for every goal.
void appendGoalRecords(QString &text, const TVXGoalList &goals, qint64 setsId, qint64 areaId);
/// "id:...;name:...;{_end_}"
QString areaNameRecords(const TVXAreaList &areas);
/// "12;15;"
QString idRecords(const std::vector<qint64> &ids);
