#include "Client.h"

#include <QAbstractItemView>

class SetSelectorFlowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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
        client.service.answer("get-sets", setsAnswer({setRow("1", "Twin", "1 1 1 1 1 1 1 1"),
                                                      setRow("2", "Twin", "2 2 2 2 2 2 2 2")}));
        const TarvexDocument *document = client.openSignedIn();
        SourcedComboBox *selector = document->listOfProjects();
        selector->selectItemAtIndex(1); // both of one name can be reached
        QCOMPARE(Client::average(document), u"2%"_s);
        QCOMPARE(document->comboBoxIndexOfItemWithStringValue(selector, selector->currentText()), 1);
        QCOMPARE(document->comboBoxIndexOfItemWithStringValue(selector, u"Twin"_s), 0);
        QCOMPARE(document->comboBoxIndexOfItemWithStringValue(selector, u"nobody"_s), 0);
    }

    void theSelectionStaysWhileSetsAreFetchedAndWhenScrolledPast()
    {
        Client client;
        client.service.answer("get-sets", setsAnswer({setRow("1", "two\nlines", "1 1 1 1 1 1 1 1"),
                                                      setRow("2", " \u200B", "2 2 2 2 2 2 2 2")}));
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

QTEST_MAIN(SetSelectorFlowTest)
#include "SetSelectorFlowTest.moc"
