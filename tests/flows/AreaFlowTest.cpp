#include "OpenArea.h"

#include <QAbstractItemModelTester>
#include <QClipboard>
#include <QComboBox>

class AreaFlowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anEditedAreaIsSavedAsAWholeInOrder()
    {
        OpenArea area;
        const QAbstractItemModelTester tester(area.table->model());
        QCOMPARE(area.service.bodies().last(), getGoals);
        QCOMPARE(area.controller->labelAreaName()->text(), u"Money"_s);
        QCOMPARE(area.controller->idsForRemove(), (std::vector<qint64>{101, 102, 2147483647}));
        QCOMPARE(area.state(), u"1 of 3 done"_s);
        QCOMPARE(area.cell(1, GoalTableModel::PriorityColumn).data().toString(), QString());

        QTest::keyClick(area.table, Qt::Key_Space); // the first goal is not done after all
        area.clickCell(1, GoalTableModel::CheckColumn);
        QLineEdit *editor = area.openEditor(2);
        QTest::keyClicks(editor, u"a;b:c"_s);
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_COMPARE(area.cell(2, GoalTableModel::GoalColumn).data().toString(), u"a;b:c"_s);
        area.table->model()->setData(area.cell(2, GoalTableModel::PriorityColumn), u"Hight"_s);
        area.click("Add Goal");
        area.controller->sliderOfArea()->setValue(8);
        QVERIFY(area.sheet->findChild<QLabel *>(u"labelRating"_s)->text() == u"8 - Excellent"_s);
        area.holdUntil([&] {
            static const QRegularExpression waits(
                u"^Saving Money… Waiting for the service: \\d\u00A0s of at most 60\u00A0s\\.$"_s);
            return area.state().contains(waits) &&
                   area.sheet->findChild<BusyIndicator *>(u"areaIndicator"_s)->isAnimating();
        });
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
        QVERIFY(!area.sheet->isVisible() && area.alert.errors.isEmpty());
        QCOMPARE(Client::guidance(area.document), u"Money was saved."_s);
        QVERIFY(area.document->project()->goals()->empty());
        QCOMPARE(area.document->project()->areas()->at(2)->valueOfArea(), 8);
        QCOMPARE(Client::percents(area.document).value(2), u"25%"_s);
        QCOMPARE(Client::average(area.document), u"44%"_s);
    }

    void everyOpeningBeginsAfresh()
    {
        OpenArea area(cutReply());
        area.click("Add Goal");
        area.service.answer("get-goals", goals(three));
        area.click("Try Again");
        QCOMPARE(area.texts(), u"Run,Read & write,Sing,New Goal"_s);
        area.click("Cancel");

        area.document->listOfProjects()->selectItemAtIndex(1);
        area.service.answer("get-goals", goals({{"201", "Dance", "5", "n"}}));
        const BusyIndicator *indicator = area.controller->downloadIndicator();
        area.holdUntil([&] {
            return area.state().startsWith(u"Loading"_s) && !area.isOffered("Save") &&
                   indicator->isAnimating();
        });
        area.openPiece(4);
        QVERIFY(!area.wasSaveOfferedThen && !indicator->isAnimating());
        QCOMPARE(area.service.bodies().last(), "p1=get-goals" + annsDigests + "&p4=9&p5=5");
        QCOMPARE(area.sheet->findChild<QLabel *>(u"labelSetName"_s)->text(), u"Second"_s);
        QCOMPARE(area.texts(), u"Dance"_s);
        QCOMPARE(area.controller->sliderOfArea()->value(), 4);
        area.controller->sliderOfArea()->setValue(8);
        area.click("Save");
        const QImage seen = Client::dialOnScreen(area.document);
        area.document->wheelView()->repaint();
        QVERIFY(Client::dialOnScreen(area.document) == seen);
        QCOMPARE(area.written().mid(2, 1), QList<QByteArray>{sent("set-area-value", "&p4=5&p5=8")});
        QCOMPARE(area.written().last(), sent("delete-some-goals", "&p4=201;"));
        QCOMPARE(Client::percents(area.document).value(4), u"0%"_s);
        area.document->listOfProjects()->selectItemAtIndex(0); // what was saved concerned another set
        QVERIFY(Client::guidance(area.document).startsWith(u"Click an area"_s));

        area.service.answer("get-goals", QByteArray("Error"));
        area.openPiece(6);
        QVERIFY(area.texts().isEmpty() && area.controller->idsForRemove().empty());
        QVERIFY(area.isOffered("Save"));
        area.click("Cancel");
        area.document->wheelView()->choosePiece(0);
        area.controller->windowDidBecomeKey();
        area.controller->closeAreaDetailsWindow(); // before it loads
        const auto sent = area.service.bodies();
        QCoreApplication::processEvents();
        QCOMPARE(area.service.bodies(), sent);
    }

    void cancelSendsNothingAndKeepsEverything()
    {
        OpenArea area;
        area.controller->sliderOfArea()->setValue(7);
        area.click("Add Goal");
        QVERIFY(area.editor());
        QTest::keyClick(area.editor(), Qt::Key_Escape);
        QVERIFY(area.sheet->isVisible());
        QTest::keyClick(area.sheet->focusWidget(), Qt::Key_Escape);
        QVERIFY(!area.sheet->isVisible());
        QVERIFY(area.written().isEmpty());
        QVERIFY(Client::guidance(area.document).startsWith(u"Click an area"_s));
        QCOMPARE(area.document->project()->areas()->at(2)->valueOfArea(), 2);
        QCOMPARE(Client::percents(area.document).value(2), u"30%"_s);
        QVERIFY(area.document->project()->goals()->empty());
    }

    void anAreaWithoutGoalsCountsAsDone()
    {
        OpenArea area;
        area.table->selectAll();
        QTest::keyClick(area.table, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"Run\nRead & write\nSing"_s);
        QTest::keyClick(area.table, Qt::Key_Down);
        QTest::keyClick(area.table, Qt::Key_Up);
        QTest::keyClick(area.table, Qt::Key_Delete);
        QCOMPARE(area.state(), u"0 of 2 done"_s);
        for (int row = 1; row < 3; ++row)
            area.click("Remove Goal");
        area.controller->removeSelectedGoal(); // nothing is selected: the list stays as it is
        QVERIFY(!area.Client::controller.isBusy());
        const QImage told = area.table->grab().toImage();
        area.table->setPlaceholder(QString());
        QVERIFY(area.table->grab().toImage() != told);
        area.click("Save");
        QCOMPARE(area.written().mid(1),
                 (QList<QByteArray>{sent("create-some-goals", "&p4="),
                                    sent("delete-some-goals", "&p4=101;102;2147483647;")}));
        QCOMPARE(Client::percents(area.document).value(2), u"100%"_s);
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
        area.clickCell(0, GoalTableModel::PriorityColumn); // no word of the list
        QTRY_VERIFY(area.table->findChild<QComboBox *>()->view()->isVisible());
        QTest::keyClick(area.table->findChild<QComboBox *>()->view(), Qt::Key_Escape);
        QTRY_VERIFY(!area.table->findChild<QComboBox *>());
        QTest::keyClick(area.table, Qt::Key_Tab);
        QVERIFY(!area.table->hasFocus());
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
            QCOMPARE(Client::guidance(area.document),
                     u"The service did not answer. Money may not be stored: open it to see."_s);
            QVERIFY(!area.sheet->isVisible());
            QVERIFY(area.document->window()->findChild<QPushButton *>(u"buttonReload"_s)->isVisible());
            QCOMPARE(Client::percents(area.document).value(2), u"33%"_s);
        }
        OpenArea area;
        area.service.answer("create-some-goals", QByteArray("Error"));
        area.click("Save");
        QVERIFY(area.alert.errors.isEmpty());
        QVERIFY(Client::guidance(area.document).startsWith(u"Money was not stored as it is shown"_s));
    }

    void aLoadWithoutGoalsCanBeEditedSavedAndTriedAgain()
    {
        for (const auto &[reply, alerts] :
             {std::tuple(cutReply(), 1), {httpReply(" Error "), 0}, {httpReply("<goals><go"), 0}}) {
            OpenArea area(reply);
            QCOMPARE(area.alert.errors.size(), alerts);
            QVERIFY(area.state().startsWith(u"The goals could not be loaded. What you save is added"_s));
            area.click("Add Goal");
            QTest::keyClicks(area.editor(), u"Dance"_s);
            QTest::keyClick(area.editor(), Qt::Key_Return);
            QTRY_VERIFY(area.isOffered("Save"));
            area.controller->sliderOfArea()->setValue(7);
            if (alerts == 0) {
                area.service.answer("get-goals", goals(three));
                area.click("Try Again");
                QCOMPARE(area.texts(), u"Run,Read & write,Sing,Dance"_s);
                QVERIFY(!area.isShown("Try Again"));
            }
            area.click("Save");
            QVERIFY(area.written().contains(sent("set-area-value", "&p4=3&p5=7")));
            QVERIFY(area.written().at(area.written().size() - 2).contains("name:Dance;"));
            QCOMPARE(area.written().last(),
                     sent("delete-some-goals", alerts ? "&p4=" : "&p4=101;102;2147483647;"));
        }
    }

    void aLoadThatEndedEarlyOrHadNoSetCannotBeSaved()
    {
        OpenArea area(httpReply("<a><id>1</id><id>2</id><name>x</name></a>"));
        QVERIFY(area.state().contains(u"nothing can be saved"_s) && !area.isOffered("Save"));
        QVERIFY(area.isShown("Try Again"));
        area.controller->closeAndSavedetailsWindow();
        QVERIFY(area.sheet->isVisible() && area.written().isEmpty());
        area.service.answer("get-goals", goals(three));
        area.click("Try Again");
        QVERIFY(area.isOffered("Save") && area.texts().startsWith(u"Run"_s));
        QCOMPARE(area.controller->sliderOfArea()->value(), 2);

        for (const auto &[sets, index, selected, reason] :
             {std::tuple(setsAnswer({setRow("7", "One", "1 1 1 1 1 1 1 1")}), 2, 0, u"could not be loaded"_s),
              {setsAnswer({setRow("7", "One", "1 1 1 1 1 1 1 1")}), 1, -1, u"Choose a set"_s},
              {setsAnswer({}), 1, -1, u"no set"_s}}) {
            Client client;
            client.service.answer("get-areas", areasAnswer({"a", "b"})); // no third area
            client.service.answer("get-sets", sets);
            const TarvexDocument *document = client.openSignedIn();
            document->listOfProjects()->setCurrentIndex(selected);
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
