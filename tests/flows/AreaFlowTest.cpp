#include "Client.h"

#include "AreaValueSlider.h"
#include "AreaWindowController.h"
#include "GoalTableModel.h"
#include "GoalTableView.h"
#include "MnemonicLabel.h"

#include <QAbstractItemModelTester>

using namespace Qt::StringLiterals;

namespace {

QByteArray goals(const QList<QList<QByteArray>> &rows)
{
    return xmlAnswer({"id", "name", "priority", "checked"}, rows);
}

const QList<QList<QByteArray>> three = {
    {"101", "Run", "9", "y"}, {"102", "Read &amp; write", "3", "n"}, {"4294967401", "Sing", "0", "Y"}};
const QByteArray getGoals = "p1=get-goals" + annsDigests + "&p4=7&p5=3"; // the set, then the area

QByteArray sent(const QByteArray &kind, const QByteArray &fields)
{
    return "p1=" + kind + annsDigests + fields;
}

// A signed-in client whose third area, "Money" with the value 2, was opened.
struct OpenArea : Client
{
    explicit OpenArea(const ServiceReply &reply = httpReply(goals(three)),
                      const QByteArray &areas = areasAnswer(eightNames))
    {
        service.answer("get-goals", reply);
        service.answer("get-areas", areas);
        document = openSignedIn();
        document->wheelView()->choosePiece(2);
        sheet = document->wndAreaDetails();
        controller = sheet->findChild<AreaWindowController *>();
        table = controller->tableViewTargets();
        labelThen = controller->labelAreaName()->text();
        if (!QTest::qWaitFor([&] {
                return controller->isAlreadyLoadedDatas() && !Client::controller.isBusy() &&
                       service.bodies().size() > 3;
            }))
            qFatal("the area did not load");
    }
    QList<QByteArray> written() const { return service.bodies().mid(4); }
    QModelIndex cell(int row, int column) const { return table->model()->index(row, column); }
    QString state() const { return sheet->findChild<QLabel *>(u"labelState"_s)->text(); }
    void click(const char *text) const
    {
        QTest::mouseClick(button(sheet, QString::fromLatin1(text)), Qt::LeftButton);
    }
    QLineEdit *openEditor(int row) const
    {
        table->setCurrentIndex(cell(row, GoalTableModel::GoalColumn));
        QTest::keyClick(table, Qt::Key_F2);
        return table->findChild<QLineEdit *>();
    }

    TarvexDocument *document;
    Sheet *sheet;
    AreaWindowController *controller;
    GoalTableView *table;
    QString labelThen;
};

} // namespace

class AreaFlowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anEditedAreaIsSavedAsAWholeInOrder()
    {
        OpenArea area;
        const QAbstractItemModelTester tester(area.table->model());
        QCOMPARE(area.labelThen, u"Please Wait..."_s);
        QCOMPARE(area.service.bodies().last(), getGoals);
        QCOMPARE(area.controller->labelAreaName()->text(), u"Money"_s);
        QCOMPARE(area.controller->idsForRemove(), (std::vector<qint64>{101, 102, 2147483647}));
        QCOMPARE(area.state(), u"1 of 3 done"_s);
        QCOMPARE(area.cell(1, GoalTableModel::PriorityColumn).data().toString(), QString());

        QTest::keyClick(area.table, Qt::Key_Space); // the first goal is not done after all
        QTest::mouseClick(area.table->viewport(), Qt::LeftButton, {},
                          area.table->visualRect(area.cell(1, 0)).center());
        QLineEdit *editor = area.openEditor(2);
        QTest::keyClicks(editor, u"a;b:c"_s);
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_COMPARE(area.cell(2, GoalTableModel::GoalColumn).data().toString(), u"a;b:c"_s);
        area.table->model()->setData(area.cell(2, GoalTableModel::PriorityColumn), u"Hight"_s);
        area.click("Add Goal");
        area.controller->sliderOfArea()->setValue(8);
        QVERIFY(area.sheet->findChild<QLabel *>(u"labelRating"_s)->text() == u"8 - Excellent"_s);
        area.click("Save");

        const QByteArray place = ";setsId:7;areaId:3;{_end_}";
        QCOMPARE(area.written(),
                 (QList<QByteArray>{
                     sent("set-area-value", "&p4=3&p5=8"),
                     sent("create-some-goals", "&p4=name:Run;priority:9;checked:0" + place +
                                                   "name:Read {_amp_} write;priority:3;checked:1" + place +
                                                   "name:a{_dc_}b{_dp_}c;priority:9;checked:0" + place +
                                                   "name:New Goal;priority:5;checked:0" + place),
                     sent("delete-some-goals", "&p4=101;102;2147483647;")}));
        QVERIFY(!area.sheet->isVisible());
        QVERIFY(area.document->project()->goals()->empty());
        QCOMPARE(area.document->project()->areas()->at(2)->valueOfArea(), 8);
        QCOMPARE(Client::percents(area.document).value(2), u"25%"_s);
        QCOMPARE(Client::average(area.document), u"44%"_s);
    }

    void cancelSendsNothingAndKeepsEverything()
    {
        OpenArea area;
        area.controller->sliderOfArea()->setValue(7);
        area.click("Add Goal");
        QTest::keyClick(area.table, Qt::Key_Escape);
        QVERIFY(!area.sheet->isVisible());
        QVERIFY(area.written().isEmpty());
        QCOMPARE(area.document->project()->areas()->at(2)->valueOfArea(), 2);
        QCOMPARE(Client::percents(area.document).value(2), u"30%"_s);
        QVERIFY(area.document->project()->goals()->empty());
    }

    void anAreaWithoutGoalsCountsAsDone()
    {
        OpenArea area;
        for (int row = 0; row < 3; ++row)
            area.click("Remove Goal");
        area.controller->removeSelectedGoal(); // nothing is selected: the list stays as it is
        QVERIFY(!area.Client::controller.isBusy());
        area.click("Save");
        QCOMPARE(area.written().mid(1),
                 (QList<QByteArray>{sent("create-some-goals", "&p4="),
                                    sent("delete-some-goals", "&p4=101;102;2147483647;")}));
        QCOMPARE(Client::percents(area.document).value(2), u"100%"_s);
    }

    void aHalfTypedCellIsDroppedBySavingInAnyWay()
    {
        for (const bool byKey : {false, true}) {
            OpenArea area;
            QLineEdit *editor = area.openEditor(0);
            QTest::keyClicks(editor, u"half"_s);
            QCOMPARE(area.state(), u"Return keeps the text, Escape drops it."_s);
            if (byKey)
                QTest::keyClick(area.sheet, Qt::Key_S, Qt::AltModifier);
            else
                area.click("Save");
            QTRY_VERIFY(!area.sheet->isVisible());
            QVERIFY(area.written().value(1).contains("name:Run;") &&
                    !area.written().value(1).contains("half"));
        }
    }

    void whatNobodyTouchedIsSavedUnchanged()
    {
        const QByteArray areas =
            xmlAnswer({"id", "name", "color", "value"},
                      {{"1", "a", "", "0"}, {"2", "b", "", "0"}, {"3", "R&amp;D", "", "-2000000000"}});
        OpenArea area(httpReply(goals({{"1", "two\nlines {_end_}", "-4", "y"}})), areas);
        QCOMPARE(area.controller->labelAreaName()->text(), u"R&D"_s);
        QLineEdit *editor = area.openEditor(0);
        QTest::keyClick(editor, Qt::Key_Return);
        area.click("Save");
        QCOMPARE(area.written().mid(0, 2),
                 (QList<QByteArray>{
                     sent("set-area-value", "&p4=3&p5=-2000000000"),
                     sent("create-some-goals",
                          "&p4=name:two\nlines {_end_};priority:-4;checked:1;setsId:7;areaId:3;{_end_}")}));
    }

    void eachRequestWithoutAnAnswerRaisesItsAlertAndTheSheetCloses()
    {
        for (const QByteArrayList &failing :
             {QByteArrayList{"set-area-value"}, QByteArrayList{"create-some-goals"},
              QByteArrayList{"delete-some-goals"},
              QByteArrayList{"set-area-value", "create-some-goals", "delete-some-goals"}}) {
            OpenArea area;
            for (const QByteArray &kind : failing)
                area.service.answer(kind, ServiceReply{"", /*closes=*/true});
            area.click("Save");
            QCOMPARE(area.alert.errors.size(), failing.size());
            QCOMPARE(area.written().size(), 3);
            QVERIFY(!area.sheet->isVisible());
            QCOMPARE(Client::percents(area.document).value(2), u"33%"_s);
        }
    }

    void withoutAGoodLoadThereIsNoSaving()
    {
        const QByteArray two = areasAnswer({"a", "b"}); // no third area
        const std::tuple<ServiceReply, QByteArray, int> loads[] = {
            {cutReply(), areasAnswer(eightNames), 1},
            {httpReply(" Error "), areasAnswer(eightNames), 0},
            {httpReply("<goals><go"), areasAnswer(eightNames), 0},
            {httpReply("<a><id>1</id><id>2</id><name>x</name></a>"), areasAnswer(eightNames), 0}};
        for (const auto &[reply, areas, alerts] : loads) {
            OpenArea area(reply, areas);
            QCOMPARE(area.alert.errors.size(), alerts);
            QVERIFY(!Client::button(area.sheet, u"Save"_s)->isEnabled());
            QVERIFY(area.state().contains(u"could not be loaded"_s));
            area.click("Cancel");
            QVERIFY(!area.sheet->isVisible() && area.written().isEmpty());
        }
        for (const auto &[sets, index, reason] :
             {std::tuple(setsAnswer({setRow("7", "One", "1 1 1 1 1 1 1 1")}), 2, u"could not be loaded"_s),
              std::tuple(setsAnswer({}), 1, u"no set"_s)}) {
            Client client;
            client.service.answer("get-areas", two);
            client.service.answer("get-sets", sets);
            const TarvexDocument *document = client.openSignedIn();
            document->wheelView()->theParent()->showAreaDetails(nullptr, index);
            const Sheet *sheet = document->wndAreaDetails();
            QTRY_VERIFY(sheet->findChild<QLabel *>(u"labelState"_s)->text().contains(reason));
            QVERIFY(!Client::button(sheet, u"Save"_s)->isEnabled());
            QCOMPARE(client.service.bodies().size(), 3);
        }
    }

    void focusThatComesBackLoadsNothingAndOneSheetOpensOnce()
    {
        OpenArea area;
        area.click("Add Goal");
        area.controller->windowDidBecomeKey();
        area.document->showAreaDetails(nullptr, 4); // a press that gets past the sheet
        QCoreApplication::processEvents();
        QCOMPARE(area.table->model()->rowCount(), 4);
        QVERIFY(area.written().isEmpty());
        QTest::mouseDClick(Client::button(area.sheet, u"Save"_s), Qt::LeftButton);
        area.controller->closeAndSavedetailsWindow();
        QCOMPARE(area.written().size(), 3);
    }
};

QTEST_MAIN(AreaFlowTest)
#include "AreaFlowTest.moc"
