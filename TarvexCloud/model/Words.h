#pragma once

#include <optional>
#include <QString>

/// The fixed words of the product's vocabulary. They are part of the interface and are never translated.
namespace Words {
/// How an area's value from 0 to 8 is rated, "Very Bad" to "Excellent"; empty for any other value.
QString rating(qint32 valueOfArea);
inline constexpr qint32 lowestRatedValue = 0;
inline constexpr qint32 highestRatedValue = 8;

/// "Low" for 0, "Normal" for 5, "Hight" for 9; empty for any other priority.
QString priority(qint32 priorityOfGoal);
/// The priority that a word stands for, or nothing for any other text.
std::optional<qint32> priorityOfWord(const QString &word);
/// The three words, lowest priority first.
QStringList priorities();
} // namespace Words
