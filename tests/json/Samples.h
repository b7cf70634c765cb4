#pragma once

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

/// One block of a sample file: a name, a text and what is expected of it. In all of them <U+001F> stands for
/// that unit.
struct Sample
{
    QString name;
    QString text;
    QString expected; ///< lines joined by line feeds
};

inline QString withUnits(QString line)
{
    static const QRegularExpression token(QStringLiteral("<U\\+([0-9A-F]{4})>"));
    for (auto found = token.match(line); found.hasMatch();
         found = token.match(line, found.capturedStart() + 1))
        line.replace(found.capturedStart(), found.capturedLength(),
                     QChar(found.captured(1).toUShort(nullptr, 16)));
    return line;
}

inline void addSamplesOf(const QFileInfo &info)
{
    QFile file(info.filePath());
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(info.filePath()));
    const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QString name = info.baseName() + QStringLiteral(": ") + lines[i];
        if (lines[i].isEmpty())
            continue;
        const QString text = withUnits(lines.value(++i));
        QStringList expected;
        while (!lines.value(++i).isEmpty())
            expected.append(withUnits(lines[i]));
        QVERIFY2(!expected.isEmpty(), qPrintable(name + QStringLiteral(" lacks its expectation")));
        QTest::newRow(qPrintable(name)) << text << expected.join(u'\n');
    }
}

/// The rows of all sample files in some folders.
inline void addSamples(std::initializer_list<QLatin1StringView> folders)
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    for (const QLatin1StringView folder : folders) {
        const QDir samples(QStringLiteral(JSON_SAMPLES) + u'/' + folder);
        const QFileInfoList files = samples.entryInfoList({QStringLiteral("*.txt")}, QDir::Files);
        QVERIFY2(!files.isEmpty(), "no samples");
        for (const QFileInfo &file : files)
            addSamplesOf(file);
    }
}
