#include "TVXProject.h"

#include <QTest>

using namespace Qt::StringLiterals;

class TVXProjectTest : public QObject
{
    Q_OBJECT

private:
    /// Has sets of these names, the first being current; drops the reference it would keep beyond its end.
    struct ProjectWithSets : TVXProject
    {
        explicit ProjectWithSets(const QStringList &names)
        {
            for (const QString &name : names) {
                sets()->push_back(std::make_shared<TVXSets>());
                sets()->back()->setName(name);
            }
            setCurrentSets(sets()->front());
        }
        ~ProjectWithSets() { delete keptCurrentSets(); }
    };

private Q_SLOTS:
    void lookupsAreExactAndTakeTheFirstOrNothing()
    {
        ProjectWithSets project({u"work"_s, u"Work"_s, u"Work"_s, QString(), u""_s});
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
