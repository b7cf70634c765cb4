#include "TVXProject.h"

#include <QScopeGuard>
#include <QTest>

using namespace Qt::StringLiterals;

class TVXProjectTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lookupsAreExactAndTakeTheFirstOrNothing()
    {
        TVXProject project;
        const auto dropped = qScopeGuard([&] { delete project.keptCurrentSets(); });
        for (const QString &name : {u"work"_s, u"Work"_s, u"Work"_s, QString(), u""_s}) {
            project.sets()->push_back(std::make_shared<TVXSets>());
            project.sets()->back()->setName(name);
        }
        project.setCurrentSets(project.sets()->front());
        const std::vector<TVXSetsPtr> sets = *project.sets();
        const auto current = [&](const QString &name) {
            project.setCurrentSetsByName(name);
            return project.currentSets();
        };
        QCOMPARE(current(u""_s), sets[4]);
        for (const QString &name : {u"Work"_s, u"Wor"_s, QString()})
            QCOMPARE(current(name), sets[1]); // unknown names leave it as it was
        QVERIFY(!project.setByName(u"Wor"_s));
        project.setCurrentSetsByIndex(0);
        QCOMPARE(project.currentSets(), sets[0]);
        project.setCurrentSetsByIndex(3);
        for (const qint32 outside : {-1, 5, std::numeric_limits<qint32>::min()})
            project.setCurrentSetsByIndex(outside);
        QCOMPARE(project.currentSets(), sets[3]);
    }

    void theCurrentSetOutlivesTheProject()
    {
        auto project = std::make_unique<TVXProject>();
        project->setCurrentSets(std::make_shared<TVXSets>());
        const std::unique_ptr<TVXSetsPtr> kept(project->keptCurrentSets());
        project.reset();
        QVERIFY(*kept);
    }
};

QTEST_APPLESS_MAIN(TVXProjectTest)
#include "TVXProjectTest.moc"
