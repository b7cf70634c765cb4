#pragma once

#include <QString>

/// A slice in words: "Health: 6 - Good. 75% of its goals in this set are done." One plain line of bounded
/// length, whatever the texts are; a value without a rating goes without, and so does the second sentence
/// without a percent.
QString sliceWords(const QString &name, qint32 value, const QString &percent);
