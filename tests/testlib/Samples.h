#pragma once

#include "SampleRows.h"

#include <array>
#include <QTest>

/// Gives the test a row for each line of a sample file, under the name that is its first field.
inline void addSampleRows(const char *file)
{
    QTest::addColumn<SampleRow>("row");
    for (const SampleRow &row : sampleRows(file))
        QTest::newRow(row.front().c_str()) << row;
}

/// The fields behind that name, each for a variable of its own.
template<std::size_t count>
std::array<QByteArray, count> sampleRow()
{
    QFETCH(SampleRow, row);
    std::array<QByteArray, count> fields;
    for (std::size_t i = 0; i < count; ++i)
        fields.at(i) = QByteArray::fromStdString(row.at(i + 1));
    return fields;
}
