#include "Client.h"

#include "AlertSheet.h"
#include "ProjectNameSheet.h"

#include <QAbstractItemView>

namespace {

const QByteArray getSets = "p1=get-sets" + annsDigests;

QByteArray sets(const QList<QByteArray> &names)
{
    QList<QList<QByteArray>> rows;
    for (qsizetype i = 0; i < names.size(); ++i)
        rows += setRow(QByteArray::number(70 + i), names[i],
                       QByteArray::number(i).append(' ').repeated(8).trimmed());
    return setsAnswer(rows);
}

} // namespace

class SetManagementFlowTest : public QObject
{
    Q_OBJECT

    static void typeName(const TarvexDocument *document, const QString &name, const QString &button)
    {
        auto *field = document->wndProjectName()->findChild<QLineEdit *>(u"textProjectName"_s);
        QTest::keyClicks(field, name); // in place of what is there
        if (name.isEmpty())
            QTest::keyClick(field, Qt::Key_Delete);
        QTest::mouseClick(Client::button(document->wndProjectName(), button), Qt::LeftButton);
    }

    static AlertSheet *deleteAlert(const TarvexDocument *document)
    {
        return document->window()->findChild<AlertSheet *>();
    }

private Q_SLOTS:
    void creatingSendsTheNameAndSelectsTheSecondItem()
    {
        for (const auto &[typed, sent, shown] : {std::tuple("May 2026", "May 2026", "May 2026"),
                                                 {"", "", "(no name)"},
                                                 {"R&D 50%", "R{_amp_}D 50{_prcnt_}", "R&D 50%"},
                                                 {"R{_amp_}D", "R{_amp_}D", "R&D"}}) {
            Client client;
            const TarvexDocument *document = client.openSignedIn();
            Client::trigger(document, "actionNewSet");
            QVERIFY(document->wndProjectName()->isVisible());
            client.service.answer("get-sets", sets({"First", sent, "Older"}));
            const BusyIndicator *indicator = document->projectNameIndicator();
            client.holdUntil([&] { return indicator->isAnimating(); });
            typeName(document, QString::fromLatin1(typed), u"Create"_s);

            QCOMPARE(client.service.bodies().mid(3),
                     (QList<QByteArray>{"p1=create-sets" + annsDigests + "&p4=" + sent, getSets}));
            QVERIFY(!document->wndProjectName()->isVisible() && client.alert.errors.isEmpty());
            QCOMPARE(document->listOfProjects()->currentText(), QString::fromLatin1(shown));
            QCOMPARE(Client::guidance(document), u"“%1” was created."_s.arg(QString::fromLatin1(shown)));
            QCOMPARE(Client::average(document), u"1%"_s);
        }
    }

    void renamingSelectsTheFirstSetOfTheName()
    {
        Client client;
        const TarvexDocument *document = client.openSignedIn();
        document->listOfProjects()->selectItemAtIndex(1);
        Client::trigger(document, "actionRenameSet");
        QCOMPARE(document->wndProjectName()->name(), u"Second"_s);
        client.service.answer("get-sets", sets({"A", "Twin", "Twin"}));
        typeName(document, u"Twin"_s, u"Rename"_s);

        QCOMPARE(client.service.bodies().mid(3),
                 (QList<QByteArray>{"p1=set-sets-name" + annsDigests + "&p4=Twin&p5=9", getSets}));
        QCOMPARE(document->currentSet()->idOfSets(), 71);
        QCOMPARE(Client::guidance(document), u"The service did not rename the set to “Twin”."_s); // of id 9

        Client::trigger(document, "actionRenameSet");
        client.service.answer("get-sets", sets({"A", "B"}));
        const QByteArray longName(40'000, 'x');
        QAccessible::queryAccessibleInterface(document->wndProjectName()->textProjectName())
            ->setText(QAccessible::Value, QString::fromLatin1(longName + "\ny")); // as if dictated
        QTest::mouseClick(Client::button(document->wndProjectName(), u"Rename"_s), Qt::LeftButton);
        QCOMPARE(client.service.bodies().value(5),
                 "p1=set-sets-name" + annsDigests + "&p4=" + longName + " y&p5=71");
        QCOMPARE(document->listOfProjects()->currentText(), u"B"_s); // left to the selector
    }

    void deletingSelectsTheSetBefore()
    {
        for (const auto &[selected, deleted, then] :
             {std::tuple(0, "7", "x"), std::tuple(1, "9", "x"), std::tuple(-1, "7", "")}) {
            Client client;
            TarvexDocument *document = client.openSignedIn();
            document->listOfProjects()->selectItemAtIndex(selected);
            client.service.answer("get-sets", selected == 1 ? sets({"x"}) : sets({"x", "y"}));
            document->deleteCurrentProject(); // the command itself is off while no set is selected
            QStringList texts;
            for (const QLabel *label : deleteAlert(document)->findChildren<QLabel *>())
                texts += label->text();
            QVERIFY(texts.contains(u"Delete?"_s));
            QVERIFY(texts.contains(u"Delete current Set of Goals?"_s));
            QVERIFY(Client::button(deleteAlert(document), u"Delete"_s)->isDefault());
            QTest::keyClick(deleteAlert(document), Qt::Key_Return);

            QCOMPARE(client.service.bodies().mid(3),
                     (QList<QByteArray>{"p1=delete-sets" + annsDigests + "&p4=" + deleted, getSets}));
            QCOMPARE(document->listOfProjects()->currentText(), QString::fromLatin1(then));
            QCOMPARE(Client::average(document), *then ? u"0%"_s : u"45%"_s);
            QCOMPARE(document->wheelView()->wordsOfPiece(1).contains(u"in this set"_s), *then != '\0');
        }
    }

    void cancellingSendsNothing()
    {
        Client client;
        const TarvexDocument *document = client.openSignedIn();
        for (const char *command : {"actionNewSet", "actionRenameSet"}) {
            Client::trigger(document, command);
            QVERIFY(document->wndProjectName()->isVisible());
            QTest::keyClick(document->wndProjectName(), Qt::Key_Escape);
            QVERIFY(!document->wndProjectName()->isVisible());
        }
        Client::trigger(document, "actionDeleteSet");
        QTest::keyClick(deleteAlert(document), Qt::Key_Escape);
        QCOMPARE(client.service.requests().size(), 3);
    }

    void commandsFollowWhatThereIs()
    {
        Client client;
        client.service.answer("get-sets", setsAnswer({}));
        const TarvexDocument *document = client.open();
        const auto enabled = [&] {
            QStringList names;
            for (const QString &name :
                 {u"NewSet"_s, u"RenameSet"_s, u"DeleteSet"_s, u"RandomGoal"_s, u"RenameAreas"_s})
                if (document->window()->findChild<QAction *>(u"action"_s + name)->isEnabled())
                    names += name;
            return names.join(u' ');
        };
        QCOMPARE(enabled(), QString());
        Client::signIn(document);
        QCOMPARE(enabled(), u"NewSet RenameAreas"_s);
        client.service.answer("get-sets", sets({"One"}));
        Client::trigger(document, "actionNewSet");
        typeName(document, u"One"_s, u"Create"_s);
        QCOMPARE(enabled(), u"NewSet RenameAreas"_s); // item 1 of one: nothing selected
        QCOMPARE(Client::guidance(document),
                 u"“One” was created. Choose a set to see its percentages and goals."_s);
        QVERIFY(!document->labelMainPercent()->isEnabled()); // it is of no set
        document->listOfProjects()->selectItemAtIndex(0);
        QCOMPARE(enabled(), u"NewSet RenameSet DeleteSet RandomGoal RenameAreas"_s);
    }

    void eachRequestWithoutAnAnswerRaisesItsAlertAndTheWindowSaysWhatIsKnown_data()
    {
        addSampleRows("set-failures.txt");
    }
    void eachRequestWithoutAnAnswerRaisesItsAlertAndTheWindowSaysWhatIsKnown()
    {
        const auto [command, failing, setsThen, sentence] = sampleRow<4>();
        Client client;
        const TarvexDocument *document = client.openSignedIn();
        for (const QByteArray &failed : failing.split(' '))
            client.service.answer(failed, cutReply());
        Client::trigger(document, "action" + command);
        if (command == "DeleteSet")
            QTest::keyClick(deleteAlert(document), Qt::Key_Return);
        else
            typeName(document, u"x"_s, command == "NewSet" ? u"Create"_s : u"Rename"_s);
        QCOMPARE(client.alert.errors.size(), failing.split(' ').size());
        QCOMPARE(client.service.requests().size(), 5);
        QCOMPARE(document->listOfProjects()->count(), setsThen.toInt());
        QCOMPARE(Client::guidance(document).toUtf8(), sentence);
        QVERIFY(!document->wndProjectName()->isVisible() && !client.controller.isBusy());
    }

    void labelsFollowTheHighlightWhileTheListIsOpenAndEscapeTakesItBack()
    {
        Client client;
        const TarvexDocument *document = client.openSignedIn();
        QVERIFY(QTest::qWaitForWindowActive(document->window()));
        SourcedComboBox *selector = document->listOfProjects();
        QTest::keyClick(selector, Qt::Key_Down, Qt::AltModifier);
        QTRY_VERIFY(selector->view()->isVisible());
        QTest::keyClick(selector->view(), Qt::Key_Down);
        QCOMPARE(Client::average(document), u"87%"_s);
        QCOMPARE(Client::percents(document).join(u' '), u"99% 99% 99% 99% 99% 99% 99% 6%"_s);
        QCOMPARE(document->currentSet()->idOfSets(), 9);
        QTest::keyClick(selector->view(), Qt::Key_Escape);
        QTRY_COMPARE(Client::average(document), u"45%"_s);
        QCOMPARE(document->currentSet()->idOfSets(), 7);
        QCOMPARE(client.service.requests().size(), 3);
    }

    void averagesTruncateAndTakeNumbersLeniently()
    {
        for (const auto &[percents, average] :
             {std::pair("       ", "0%"), std::pair("75 75 75 75 75 75 75 74", "74%"),
              std::pair("-7 0 0 0 0 0 0 0", "0%"), std::pair("x +8 8y -- 1e9 0x9 7.9 -16", "1%"),
              std::pair("2147483647 2147483647 0 0 0 0 0 99999999999", "268435455%")}) { // wraps at 32 bits
            Client client;
            client.service.answer("get-sets", setsAnswer({setRow("1", "One", percents)}));
            const TarvexDocument *document = client.openSignedIn();
            QCOMPARE(Client::percents(document).join(u' '),
                     QString::fromLatin1(percents).replace(u' ', u"% "_s) + u'%');
            QCOMPARE(Client::average(document), QString::fromLatin1(average));
        }
    }

    void aNameResolvesByIdentityAndElseToTheFirst()
    {
        Client client;
        client.service.answer("get-sets", sets({"Twin", "Twin"}));
        const TarvexDocument *document = client.openSignedIn();
        SourcedComboBox *selector = document->listOfProjects();
        selector->selectItemAtIndex(1); // both of one name can be reached
        QCOMPARE(Client::average(document), u"1%"_s);
        QCOMPARE(document->comboBoxIndexOfItemWithStringValue(selector, selector->currentText()), 1);
        QCOMPARE(document->comboBoxIndexOfItemWithStringValue(selector, u"Twin"_s), 0);
        QCOMPARE(document->comboBoxIndexOfItemWithStringValue(selector, u"nobody"_s), 0);
    }

    void theSelectionStaysWhileSetsAreFetchedAndWhenScrolledPast()
    {
        Client client;
        client.service.answer("get-sets", sets({"two\nlines", " \u200B"}));
        const TarvexDocument *document = client.openSignedIn();
        SourcedComboBox *selector = document->listOfProjects();
        QCOMPARE(selector->itemText(1), u"(no name)"_s);
        document->wheelView()->setFocus();
        QWheelEvent down(QPointF(1, 1), QPointF(1, 1), {}, QPoint(0, -120), Qt::NoButton, {},
                         Qt::NoScrollPhase, /*inverted=*/false);
        QCoreApplication::sendEvent(selector, &down);
        QVERIFY(selector->indexOfSelectedItem() == 0 && !down.isAccepted());
        document->project()->sets()->clear();
        QCOMPARE(QAccessible::queryAccessibleInterface(selector)->text(QAccessible::Value), u"two lines"_s);
    }
};

QTEST_MAIN(SetManagementFlowTest)
#include "SetManagementFlowTest.moc"
