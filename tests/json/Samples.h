#pragma once

#include <QDir>
#include <QRegularExpression>
#include <QTest>

/// In sample files <U+001F> stands for that unit.
inline QString withUnits(QString text)
{
    static const QRegularExpression token(QStringLiteral("<U\\+([0-9A-F]{4})>"));
    for (auto found = token.match(text); found.hasMatch();
         found = token.match(text, found.capturedStart() + 1))
        text.replace(found.capturedStart(), found.capturedLength(),
                     QChar(found.captured(1).toUShort(nullptr, 16)));
    return text;
}

/// A row for each block in the sample files of some folders: its first line is its name, the second a text,
/// and all others what is expected of it. Between blocks is an empty line.
inline void addSamples(std::initializer_list<const char *> folders)
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    for (const char *folder : folders) {
        const QDir samples(QLatin1String(TARVEX_SAMPLES "/") + QLatin1String(folder));
        for (const QFileInfo &info : samples.entryInfoList(QDir::Files)) {
            QFile file(info.filePath());
            QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(info.filePath()));
            for (const QString &block :
                 QString::fromUtf8(file.readAll().trimmed()).split(QLatin1String("\n\n"))) {
                const QStringList lines = block.split(u'\n');
                const QString name = info.baseName() + QLatin1String(": ") + lines.first();
                QVERIFY2(lines.size() > 2, qPrintable(name + QLatin1String(" lacks its expectation")));
                QTest::newRow(qPrintable(name))
                    << withUnits(lines[1]) << withUnits(lines.sliced(2).join(u'\n'));
            }
        }
    }
}
