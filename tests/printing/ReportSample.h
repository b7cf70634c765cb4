#pragma once

#include "ReportLayout.h"

#include <QDir>
#include <QTest>

using namespace Qt::StringLiterals;

/// A report described in lines, one record each: "page X Y WIDTH HEIGHT", "lines TITLE AREA GOAL", "title
/// TEXT", "area ID VALUE NAME", "goal AREA PRIORITY y|n NAME". An empty line ends it; what follows is
/// expected.
struct ReportSample
{
    QString name;
    QRectF page;
    ReportLineHeights lineHeights;
    QString title;
    TVXProjectPtr project = std::make_shared<TVXProject>();
    QString expected;

    void addArea(qint64 id, qint32 value, const QString &areaName)
    {
        TVXArea &area = *project->areas()->emplace_back(std::make_shared<TVXArea>());
        area.setIdOfArea(id);
        area.setValueOfArea(value);
        area.setName(areaName);
    }

    void addGoal(qint64 area, qint32 priority, bool checked, const QString &goalName)
    {
        project->goals()->push_back(std::make_shared<TVXGoal>());
        project->goals()->back()->setIdOfArea(area);
        project->goals()->back()->setPriorityOfGoal(priority);
        project->goals()->back()->setIsChecked(checked);
        project->goals()->back()->setNameOfGoal(goalName);
    }

    void addRecord(const QString &line)
    {
        const auto word = [&](qsizetype at) { return line.section(u' ', at, at); };
        const auto rest = [&](qsizetype at) { return line.section(u' ', at); };
        if (word(0) == u"page")
            page = QRectF(word(1).toDouble(), word(2).toDouble(), word(3).toDouble(), word(4).toDouble());
        else if (word(0) == u"lines")
            lineHeights = {word(1).toFloat(), word(2).toFloat(), word(3).toFloat()};
        else if (word(0) == u"title")
            title = rest(1);
        else if (word(0) == u"area")
            addArea(word(1).toLongLong(), word(2).toInt(), rest(3));
        else if (word(0) == u"goal")
            addGoal(word(1).toLongLong(), word(2).toInt(), word(3) == u"y", rest(4));
        else
            QFAIL(qPrintable(name + u": "_s + line));
    }
};

/// All sample files, in the order of their names.
inline QList<ReportSample> reportSamples()
{
    QList<ReportSample> samples;
    const QFileInfoList files = QDir(QStringLiteral(TARVEX_SAMPLES)).entryInfoList({u"*.txt"_s});
    for (const QFileInfo &info : files) {
        QFile file(info.filePath());
        if (!file.open(QIODevice::ReadOnly))
            qFatal("a sample cannot be read");
        const QString text = QString::fromUtf8(file.readAll());
        const qsizetype end = text.indexOf(u"\n\n"_s);
        ReportSample sample;
        sample.name = info.baseName();
        for (const QString &line : text.first(end).split(u'\n'))
            sample.addRecord(line);
        sample.expected = text.sliced(end + 2);
        samples.append(sample);
    }
    return samples;
}
