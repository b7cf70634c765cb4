#pragma once

#include <QFile>
#include <QTest>

/// The bytes of a file in the folder "samples" beside the test; without any the test cannot go on.
inline QByteArray sampleFile(const char *name)
{
    QFile file(QLatin1String(TARVEX_SAMPLES "/") + QLatin1String(name));
    QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    if (bytes.isEmpty())
        qFatal("the samples of %s are missing", name);
    return bytes;
}

/// Gives the test a row of byte arrays for each line of a sample file: its name, "|", the fields with "|"
/// between them. Blanks around a field do not count; \n, \r and, for any other byte, a backslash and two
/// hexadecimal digits stand for what a line cannot hold. "#" starts a remark.
inline void addSampleRows(const char *file, const QList<const char *> &columns)
{
    for (const char *column : columns)
        QTest::addColumn<QByteArray>(column);
    for (const QByteArray &line : sampleFile(file).split('\n')) {
        const QByteArrayList fields = line.split('|');
        if (line.isEmpty() || line.startsWith('#'))
            continue;
        if (fields.size() != columns.size() + 1)
            qFatal("%s: too few fields or too many: %s", file, line.constData());
        QTestData &row = QTest::newRow(fields.first().trimmed().constData());
        for (QByteArray field : fields.sliced(1)) {
            field = field.trimmed().replace("\\r", "\r").replace("\\n", "\n");
            row << QByteArray::fromPercentEncoding(field, /*percent=*/'\\');
        }
    }
}
