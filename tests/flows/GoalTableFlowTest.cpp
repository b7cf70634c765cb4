#include "OpenArea.h"

#include <QComboBox>

class GoalTableFlowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QGuiApplication::setLayoutDirection(Qt::LeftToRight); }

    void aChangedTextIsKeptOrDroppedByTheUserAlone_data() { addSampleRows("typed-texts.txt"); }
    void aChangedTextIsKeptOrDroppedByTheUserAlone()
    {
        const auto [act, then, left] = sampleRow<3>();
        const OpenArea area;
        area.openEditor(0);
        QVERIFY(area.isOffered("Save") && !area.isShown("Keep Text"));
        QTest::keyClicks(area.editor(), u"half"_s);
        QVERIFY(!area.isOffered("Save") && area.isShown("Drop Text"));
        QVERIFY(area.state().startsWith(u"Return keeps"_s));
        QTest::keyClick(area.editor(), Qt::Key_S, Qt::AltModifier);
        area.accessibleCell(0, GoalTableModel::CheckColumn)->actionInterface()->doAction(u"Toggle"_s);
        QCOMPARE(area.editor()->text(), u"half"_s);
        if (act == "press")
            QTest::keyClick(area.editor(), QKeySequence(QString::fromLatin1(then))[0].key());
        else if (act == "button")
            area.click(then.constData());
        else
            area.clickCell(1, GoalTableModel::GoalColumn);
        QTRY_VERIFY(area.isOffered("Save"));
        QCOMPARE(area.texts().toUtf8(), left);
        QVERIFY(area.sheet->isVisible() && !area.isShown("Keep Text"));
    }

    void theTableWorksInBothDirections()
    {
        for (const Qt::LayoutDirection direction : {Qt::LeftToRight, Qt::RightToLeft}) {
            QGuiApplication::setLayoutDirection(direction);
            const OpenArea area;
            const QRect view = area.table->viewport()->rect();
            const auto place = [&](int column) { return area.table->visualRect(area.cell(1, column)); };
            QVERIFY(view.contains(place(0)) && view.contains(place(1)) && view.contains(place(2)));
            QCOMPARE(place(0).left() < place(1).left(), direction == Qt::LeftToRight);
            area.doubleClickCell(1, GoalTableModel::CheckColumn);
            QCOMPARE(area.state(), u"1 of 3 done"_s); // two clicks
            area.clickCell(1, GoalTableModel::CheckColumn);
            QCOMPARE(area.state(), u"2 of 3 done"_s);
            const QImage seen = area.table->viewport()->grab().toImage();
            const auto ink = [&](int row) { // of the box in that row
                const QImage box = seen.copy(area.table->visualRect(area.cell(row, 0)));
                int dark = 0;
                for (int at = 0; at < box.width() * box.height(); ++at)
                    dark += qGray(box.pixel(at % box.width(), at / box.width())) < 128 ? 1 : 0;
                return dark;
            };
            QVERIFY(ink(0) > ink(2)); // which is not ticked
            QCOMPARE(area.table->currentIndex(), area.cell(1, GoalTableModel::GoalColumn));
            area.clickCell(1, GoalTableModel::PriorityColumn);
            auto *words = area.table->findChild<QComboBox *>();
            QTRY_VERIFY(words->view()->isVisible());
            QTest::keyClick(words->view(), Qt::Key_Up);
            QTest::keyClick(words->view(), Qt::Key_Return);
            QTRY_COMPARE(area.cell(1, GoalTableModel::PriorityColumn).data().toString(), u"Low"_s);
            area.doubleClickCell(1, GoalTableModel::GoalColumn);
            QCOMPARE(area.editor()->text(), u"Read & write"_s);
            area.click("Add Goal");
            QVERIFY(view.contains(area.editor()->geometry()));
            QTest::keyClicks(area.editor(), u"Dance"_s);
            QTest::keyClick(area.editor(), Qt::Key_Return);
            QTRY_COMPARE(area.texts(), u"Run,Read & write,Sing,Dance"_s);
            for (int more = 0; more < 20; ++more)
                area.click("Add Goal");
            for (int column = 0; column < 3; ++column) // beside the scroll bar
                QVERIFY(
                    area.table->viewport()->rect().contains(area.table->visualRect(area.cell(23, column))));
            area.clickCell(23, GoalTableModel::CheckColumn);
            QCOMPARE(area.state(), u"3 of 24 done"_s);
            QWheelEvent scroll(QPointF(1, 1), QPointF(1, 1), {}, QPoint(0, 120), Qt::NoButton, {},
                               Qt::NoScrollPhase, /*inverted=*/false);
            QCoreApplication::sendEvent(area.controller->sliderOfArea(), &scroll);
            QCOMPARE(area.controller->sliderOfArea()->value(), 2); // which has not the focus
        }
    }

    void everyCellCanBeChangedByAssistiveToolsAlone()
    {
        const OpenArea area;
        QAccessibleInterface *table = QAccessible::queryAccessibleInterface(area.table);
        const auto act = [&](int row, int column, const QString &action) {
            area.accessibleCell(row, column)->actionInterface()->doAction(action);
        };
        const auto name = [&](int row, int column) {
            return area.accessibleCell(row, column)->text(QAccessible::Name);
        };
        QCOMPARE(QAccessible::queryAccessibleInterface(area.sheet)->text(QAccessible::Name), u"Money"_s);
        QTest::keyClick(area.table, Qt::Key_Right);
        QCOMPARE(table->focusChild()->text(QAccessible::Name), u"Hight"_s);
        QTest::keyClick(area.table, Qt::Key_Down);
        QCOMPARE(table->focusChild()->text(QAccessible::Name), u"Read & write"_s);
        QCOMPARE(table->focusChild()->text(QAccessible::Description), u"Not done"_s);
        QVERIFY(table->focusChild()->state().selected);
        QCOMPARE(table->tableInterface()->columnDescription(GoalTableModel::CheckColumn), u"Done"_s);
        const QPoint middle = area.accessibleCell(2, 1)->rect().center();
        QCOMPARE(table->childAt(middle.x(), middle.y()), area.accessibleCell(2, 1));
        QCOMPARE(table->child(table->indexOfChild(area.accessibleCell(2, 1))), area.accessibleCell(2, 1));

        act(1, GoalTableModel::CheckColumn, QAccessibleActionInterface::toggleAction());
        QVERIFY(area.accessibleCell(1, 0)->state().checked && area.state() == u"2 of 3 done"_s);
        act(1, GoalTableModel::PriorityColumn, QAccessibleActionInterface::increaseAction());
        QCOMPARE(name(1, GoalTableModel::PriorityColumn), u"Low"_s);
        act(0, GoalTableModel::PriorityColumn, QAccessibleActionInterface::increaseAction());
        act(0, GoalTableModel::PriorityColumn, QAccessibleActionInterface::decreaseAction());
        QCOMPARE(name(0, GoalTableModel::PriorityColumn), u"Normal"_s);
        area.accessibleCell(2, GoalTableModel::GoalColumn)->setText(QAccessible::Value, u"Hum"_s);
        act(1, GoalTableModel::GoalColumn, QAccessibleActionInterface::pressAction());
        QAccessible::queryAccessibleInterface(area.editor())
            ->setText(QAccessible::Value, u"dictated\nlines"_s);
        QVERIFY(!area.editor()->isModified() && !area.isOffered("Save"));
        QAccessible::queryAccessibleInterface(Client::button(area.sheet, u"Keep Text"_s))
            ->actionInterface()
            ->doAction(QAccessibleActionInterface::pressAction());
        QTRY_COMPARE(area.texts(), u"Run,dictated lines,Hum"_s);
    }
};

QTEST_MAIN(GoalTableFlowTest)
#include "GoalTableFlowTest.moc"
