#include "Words.h"

#include <array>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

constexpr std::array ratings = {"Very Bad"_L1,     "Very Bad - Bad"_L1,   "Bad"_L1,
                                "Bad - Normal"_L1, "Normal"_L1,           "Normal - Good"_L1,
                                "Good"_L1,         "Good - Excellent"_L1, "Excellent"_L1};

struct Priority
{
    qint32 value;
    QLatin1StringView word;
};

constexpr std::array priorityWords = {Priority{0, "Low"_L1}, Priority{5, "Normal"_L1},
                                      Priority{9, "Hight"_L1}};

} // namespace

QString Words::rating(qint32 valueOfArea)
{
    if (valueOfArea < lowestRatedValue || valueOfArea > highestRatedValue)
        return u""_s;
    return ratings[static_cast<std::size_t>(valueOfArea)];
}

QString Words::priority(qint32 priorityOfGoal)
{
    for (const Priority &priority : priorityWords)
        if (priority.value == priorityOfGoal)
            return priority.word;
    return u""_s;
}

std::optional<qint32> Words::priorityOfWord(const QString &word)
{
    for (const Priority &priority : priorityWords)
        if (priority.word == word)
            return priority.value;
    return std::nullopt;
}

QStringList Words::priorities()
{
    QStringList words;
    for (const Priority &priority : priorityWords)
        words += priority.word;
    return words;
}
