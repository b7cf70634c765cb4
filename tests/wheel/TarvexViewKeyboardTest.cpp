#include "WheelOnScreen.h"

class TarvexViewKeyboardTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keysWalkRoundTheDialAndChoose()
    {
        WheelOnScreen wheel;
        wheel.setLayoutDirection(Qt::RightToLeft); // the dial is not mirrored
        for (const Qt::Key key :
             {Qt::Key_Return, Qt::Key_Right, Qt::Key_Down, Qt::Key_Enter, Qt::Key_Home, Qt::Key_Left,
              Qt::Key_Up, Qt::Key_Space, Qt::Key_End, Qt::Key_A, Qt::Key_Right, Qt::Key_Return})
            QTest::keyClick(&wheel, key);
        QCOMPARE(wheel.reports, QStringLiteral("Area 0/0 Area 2/2 Area 6/6 Area 0/0 "));
    }

    void withoutAreasThereIsNothingToReach()
    {
        WheelOnScreen wheel;
        QAccessibleInterface *slice = QAccessible::queryAccessibleInterface(&wheel)->child(7);
        wheel.project->areas()->clear();
        wheel.display();
        for (const Qt::Key key : {Qt::Key_Right, Qt::Key_End, Qt::Key_Return})
            QTest::keyClick(&wheel, key);
        QVERIFY(!slice->isValid());
        slice->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QCOMPARE(slice->parent()->childCount(), 0);
        QCOMPARE(wheel.reports, QString());
    }

    void ringMarksTheSliceReachedByKeyboardOnly()
    {
        WheelOnScreen wheel;
        const auto ringIsAt = [&](int right, int up) { // just within the rim, in the middle of slice 0 or 2
            wheel.display();
            return wheel.screenshot().pixelColor(wheel.at(right, up)).lightness() < 40;
        };
        wheel.clearFocus();
        wheel.setFocus(Qt::TabFocusReason);
        QVERIFY(ringIsAt(78, 188));
        wheel.click({100, -50});
        QVERIFY(!ringIsAt(78, 188) && !ringIsAt(187, -78));
        QTest::keyClick(&wheel, Qt::Key_Right);
        QTest::keyClick(&wheel, Qt::Key_Left);
        QVERIFY(!ringIsAt(78, 188) && ringIsAt(187, -78));
    }

    void eachAreaIsAChildThatReadsAndActsLikeItsSlice()
    {
        WheelOnScreen wheel;
        wheel.setPercentTexts({QString(), QStringLiteral("75")});
        const QAccessibleInterface *graphic = QAccessible::queryAccessibleInterface(&wheel);
        QAccessibleInterface *slice = graphic->child(1);
        QCOMPARE(slice->text(QAccessible::Name), QStringLiteral("Area 1"));
        QCOMPARE(slice->text(QAccessible::Value), QStringLiteral("1"));
        QCOMPARE(slice->text(QAccessible::Description), QStringLiteral("75 percent of goals done"));
        slice->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QCOMPARE(wheel.reports, QStringLiteral("Area 1/1 "));

        QCOMPARE(graphic->childCount(), 8);
        for (int index = 0; index < 8; ++index) {
            const QRect rect = graphic->child(index)->rect();
            for (const QPoint &point :
                 {rect.topLeft(), rect.topRight(), rect.bottomLeft(), rect.bottomRight()})
                QCOMPARE(graphic->indexOfChild(graphic->childAt(point.x(), point.y())), index);
        }
        QVERIFY(!graphic->childAt(wheel.mapToGlobal(QPoint(3, 3)).x(), wheel.mapToGlobal(QPoint(3, 3)).y()));
    }

    void changesAndFocusAreAnnounced()
    {
        WheelOnScreen wheel;
        wheel.clearFocus();
        QCoreApplication::processEvents();
        wheel.announcements.clear();
        wheel.project->areas()->at(2)->setName(QStringLiteral("Health"));
        wheel.project->areas()->at(4)->setValueOfArea(9);
        wheel.display();
        wheel.setPercentTexts({QStringLiteral("10")});
        wheel.setFocus(Qt::TabFocusReason);
        QCoreApplication::processEvents();
        QTest::keyClick(&wheel, Qt::Key_Right);
        using enum QAccessible::Event;
        const decltype(wheel.announcements) expected = {
            {NameChanged, 2}, {ValueChanged, 4}, {DescriptionChanged, 0}, {Focus, 0}, {Focus, 1}};
        QCOMPARE(wheel.announcements, expected);
        const QAccessibleInterface *graphic = QAccessible::queryAccessibleInterface(&wheel);
        QCOMPARE(graphic->focusChild(), graphic->child(1));
        QVERIFY(graphic->child(1)->state().focused && !graphic->child(0)->state().focused);
    }
};

QTEST_MAIN(TarvexViewKeyboardTest)
#include "TarvexViewKeyboardTest.moc"
