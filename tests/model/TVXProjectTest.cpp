#include "TVXProject.h"

#include <QTest>

class TVXProjectTest : public QObject
{
    Q_OBJECT

private:
    static TVXSetsPtr named(const QString &name)
    {
        auto set = std::make_shared<TVXSets>();
        set->setName(name);
        return set;
    }

    // Drops the reference that a project keeps beyond its own end.
    struct ProjectInUse : TVXProject
    {
        ~ProjectInUse() { delete keptCurrentSets(); }
    };

private Q_SLOTS:
    void freshRecordsHoldEmptyTextsRatherThanNone()
    {
        const TVXSets set;
        for (const QString &text : {TVXArea().name(), TVXArea().color(), TVXGoal().nameOfGoal(), set.name(),
                                    set.percent1(), set.percent8()}) {
            QVERIFY(text.isEmpty());
            QVERIFY(!text.isNull());
        }
        const TVXProject project;
        QVERIFY(project.sets()->empty() && project.areas()->empty() && project.goals()->empty());
        QVERIFY(!project.currentSets());
    }

    void percentsKeepTheirPlaces()
    {
        TVXSets set;
        set.setPercent1(QStringLiteral("1"));
        set.setPercent2(QStringLiteral("2"));
        set.setPercent3(QStringLiteral("3"));
        set.setPercent4(QStringLiteral("4"));
        set.setPercent5(QStringLiteral("5"));
        set.setPercent6(QStringLiteral("6"));
        set.setPercent7(QStringLiteral("7"));
        set.setPercent8(QStringLiteral("8"));
        for (int index = 0; index < TVXSets::areaCount; ++index)
            QCOMPARE(set.percentOfArea(index), QString::number(index + 1));
        QCOMPARE(set.percent3(), QStringLiteral("3"));
        QCOMPARE(set.percent7(), QStringLiteral("7"));
        QVERIFY_THROWS_EXCEPTION(std::out_of_range, (void)set.percentOfArea(8));
        QVERIFY_THROWS_EXCEPTION(std::out_of_range, (void)set.percentOfArea(-1));
    }

    void listsAndStringsAreSharedNotCopied()
    {
        TVXProject project;
        const auto goals = std::make_shared<TVXGoalList>();
        project.setGoals(goals);
        goals->push_back(std::make_shared<TVXGoal>());
        QCOMPARE(project.goals()->size(), std::size_t(1));

        const QString name = QString(3, u'n');
        QCOMPARE(named(name)->name().constData(), name.constData());
    }

    void lookupByNameIsExactAndTakesTheFirst_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("index");
        QTest::newRow("two of one name") << QStringLiteral("Work") << 1;
        QTest::newRow("another case is another name") << QStringLiteral("work") << 0;
        QTest::newRow("empty name") << QStringLiteral("") << 3;
        QTest::newRow("unknown") << QStringLiteral("Wor") << -1;
        QTest::newRow("none") << QString() << -1;
    }

    void lookupByNameIsExactAndTakesTheFirst()
    {
        QFETCH(QString, name);
        QFETCH(int, index);
        ProjectInUse project;
        for (const char *text : {"work", "Work", "Work", ""})
            project.sets()->push_back(named(QString::fromLatin1(text)));
        project.sets()->push_back(named(QString()));
        const TVXSetsPtr before = project.sets()->front();
        project.setCurrentSets(before);

        const TVXSetsPtr expected = index < 0 ? nullptr : (*project.sets())[static_cast<std::size_t>(index)];
        QCOMPARE(project.setByName(name), expected);
        project.setCurrentSetsByName(name);
        QCOMPARE(project.currentSets(), expected ? expected : before);
    }

    void anIndexOutsideTheListChangesNothing()
    {
        ProjectInUse project;
        project.sets()->assign({named(QStringLiteral("a")), named(QStringLiteral("b"))});
        project.setCurrentSetsByIndex(1);
        for (const qint32 outside :
             {-1, 2, std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max()}) {
            project.setCurrentSetsByIndex(outside);
            QCOMPARE(project.currentSets(), project.sets()->at(1));
        }
    }

    void theCurrentSetOutlivesTheProject()
    {
        std::weak_ptr<TVXSets> set;
        TVXSetsPtr *kept = nullptr;
        {
            TVXProject project;
            project.sets()->push_back(named(QStringLiteral("kept")));
            set = project.sets()->front();
            project.setCurrentSetsByIndex(0);
            kept = project.keptCurrentSets();
        }
        QVERIFY(!set.expired());
        delete kept;
        QVERIFY(set.expired());
    }
};

QTEST_APPLESS_MAIN(TVXProjectTest)
#include "TVXProjectTest.moc"
