#include "Announcement.h"
#include "Client.h"

#include <QWindow>

class SignInFlowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aGoodSignInShowsTheWheelAndTheFirstSet()
    {
        Client client;
        TarvexDocument *document = client.openSignedIn();

        QCOMPARE(client.service.bodies(),
                 (QList<QByteArray>{"p1=sign-in" + annsDigests, "p1=get-sets" + annsDigests,
                                    "p1=get-areas" + annsDigests}));

        QVERIFY(!document->wndSignIn()->isVisible());
        QCOMPARE(Client::labels(document).join(u' '), u"Health Work Money Family Growth Fun Home Love"_s);
        QCOMPARE(Client::percents(document).join(u' '), u"10% 20% 30% 40% 50% 60% 70% 80%"_s);
        QCOMPARE(Client::average(document), u"45%"_s);
        QCOMPARE(document->listOfProjects()->currentText(), u"First"_s);
        QCOMPARE(document->textSignInErrorMessage()->text(), u"Checking..."_s);

        QCOMPARE(document->currentSet(), document->project()->sets()->front());
        QString lean;  // of the percents round the rim: lying or standing
        QString sides; // of the names towards the wheel
        for (int k = 1; k <= 8; ++k) {
            const auto *name = document->window()->findChild<QLabel *>(u"label%1"_s.arg(k));
            sides += name->alignment() & Qt::AlignLeft ? u'<' : u'>';
            const auto *label = document->window()->findChild<QLabel *>(u"label%1Percent"_s.arg(k));
            lean += label->width() > label->height() ? u'_' : u'|';
        }
        QCOMPARE(lean + sides, u"_||__||_<<<<>>>>"_s);
        QVERIFY(QFontInfo(document->labelMainPercent()->font()).pixelSize() >
                2 * QFontInfo(document->label1()->font()).pixelSize());
        QAccessibleInterface *slices = QAccessible::queryAccessibleInterface(document->wheelView());
        QVERIFY(slices->child(0)->text(QAccessible::Description).contains(u"10% of its goals"_s));
        QVERIFY(client.alert.errors.isEmpty());
    }

    void anyOtherAnswerIsShownAndTheSheetStays_data() { addSampleRows("sign-in-answers.txt"); }
    void anyOtherAnswerIsShownAndTheSheetStays()
    {
        const auto [answer, shown] = sampleRow<2>();
        Client client;
        const bool isNone = answer == "(none)";
        client.service.answer("sign-in", isNone ? cutReply() : httpReply(answer));
        const TarvexDocument *document = client.openSignedIn();
        QCOMPARE(document->textSignInErrorMessage()->text().toUtf8(), shown);
        QVERIFY(document->wndSignIn()->isVisible());
        const auto *hint = document->wndSignIn()->findChild<QLabel *>(u"labelSignInHint"_s);
        const bool isPage = shown.startsWith('<'); // no answer of the service's
        QCOMPARE(hint->isVisible(), shown == "Error" || isPage);
        QCOMPARE(hint->text().contains(u"127.0.0.1"_s), isNone || isPage);
        QCOMPARE(document->textSignInErrorMessage()->accessibleName(),
                 shown.isEmpty() ? u"Message"_s : u"Error"_s);
        QVERIFY(shown.isEmpty() || document->textSignInErrorMessage()->findChild<QLabel *>()->isVisible());
        const auto *password = document->wndSignIn()->findChild<QLineEdit *>(u"textPassword"_s);
        QCOMPARE(password->echoMode(), QLineEdit::Password);
        QCOMPARE(document->wndSignIn()->focusWidget() == password && password->hasSelectedText(), !isNone);
        QVERIFY(document->loginUserName().isEmpty() && document->loginPassword().isEmpty());
        QCOMPARE(client.service.bodies().size(), 1);

        client.service.answer("sign-in", QByteArray("  OK\t"));
        QTest::keyClick(document->wndSignIn(), Qt::Key_Return); // the fields have kept their texts
        QCOMPARE(client.service.bodies().mid(1, 1), QList<QByteArray>{"p1=sign-in" + annsDigests});
        QVERIFY(!document->wndSignIn()->isVisible());
    }

    void theButtonThatClosesSaysWhatItEnds()
    {
        Client client;
        client.openSignedIn();
        const QPointer second = client.open();
        QTest::mouseClick(Client::button(second->wndSignIn(), u"Close Window"_s), Qt::LeftButton);
        QTRY_VERIFY(second.isNull());
        const TarvexDocument *third = client.open();
        const QPushButton *cancel = Client::button(third->wndSignIn(), u"Close Window"_s);
        QTest::mouseClick(Client::button(third->wndSignIn(), u"Create Account…"_s), Qt::LeftButton);
        client.controller.documents().front()->close();
        QTest::keyClick(third->wndSignUp(), Qt::Key_Escape);
        QTRY_COMPARE(cancel->text(), u"Quit"_s);
    }

    void whatArrivedIsShownWhateverFails_data() { addSampleRows("loads.txt"); }
    void whatArrivedIsShownWhateverFails()
    {
        const auto [kind, answer, alerts, sets, areas] = sampleRow<5>();
        Client client;
        client.service.answer(kind, answer == "(cut)" ? cutReply() : httpReply(answer));
        const TarvexDocument *document = client.openSignedIn();

        QCOMPARE(client.alert.errors.size(), alerts.toInt());
        QCOMPARE(client.service.requests().size(), 3);
        QVERIFY(!document->wndSignIn()->isVisible());
        QCOMPARE(document->listOfProjects()->count(), sets.toInt());
        QCOMPARE(Client::labels(document).filter(QRegularExpression(u"."_s)).size(), areas.toInt());
        QCOMPARE(Client::average(document), sets != "0" ? u"45%"_s : QString());
        QVERIFY((sets != "0" && areas != "0") || !Client::guidance(document).isEmpty());
        QCOMPARE(document->wheelView()->isVisible(), areas != "0");
    }

    void anAnswerWithShortColumnsEndsTheActionAndTheWindowGoesOn()
    {
        Client client;
        client.service.answer("get-sets", QByteArray("<a><id>1</id><id>2</id><name>only</name></a>"));
        const TarvexDocument *document = client.openSignedIn();
        QVERIFY(document->wndSignIn()->isVisible());
        QVERIFY(document->textSignInErrorMessage()->text().contains(u"incomplete"_s));
        QVERIFY(!client.controller.isBusy());
    }

    void whatAppearsIsSaidToAssistiveTools()
    {
        Client client;
        client.service.answer("sign-in", QByteArray("No."));
        const TarvexDocument *document = client.openSignedIn();
        const auto said = [](const QWidget *window) {
            QWidget *told = window->findChild<Announcement *>(QString(), Qt::FindDirectChildrenOnly);
            const QAccessibleInterface *dot = QAccessible::queryAccessibleInterface(told);
            const bool isUp = told->isVisible() && dot->role() == QAccessible::Notification;
            return isUp ? dot->text(QAccessible::Name) : u"-"_s;
        };
        QTRY_COMPARE(said(document->wndSignIn()), u"No."_s);
        client.service.answer("sign-in", QByteArray("OK"));
        QTest::keyClick(document->wndSignIn(), Qt::Key_Return);
        QTRY_COMPARE(said(document->window()), u"Click an area to set its value and edit its goals."_s);
        Client::trigger(document, "actionSignIn"); // and what was said before is not said again
        QCOMPARE(said(document->wndSignIn()), u"-"_s);
    }

    void inputDuringARequestIsDropped()
    {
        Client client;
        TarvexDocument *document = client.open();
        Sheet *sheet = document->wndSignIn();
        const auto *hint = sheet->findChild<QLabel *>(u"labelSignInHint"_s);
        client.holdUntil([&] {
            if (!hint->text().contains(u"of at most 60\u00A0s"_s) || // seen after a second
                document->textSignInErrorMessage()->text() != u"Checking..."_s || !client.controller.isBusy())
                return false;
            QTest::mouseClick(Client::button(sheet, u"Sign In"_s), Qt::LeftButton);
            QTest::keyClick(sheet, Qt::Key_Escape);
            QMetaObject::invokeMethod(document, "signIn"); // what gets past any filter
            sheet->windowHandle()->close();
            document->window()->windowHandle()->close();
            return true;
        });
        Client::signIn(document);
        QCOMPARE(client.service.requests().size(), 3);
        QCOMPARE(client.controller.documents().size(), std::size_t(1));
        QVERIFY(document->window()->isVisible());
    }

    void signingInAgainCanBeTakenBackWhileAWheelIsShown()
    {
        Client client;
        const TarvexDocument *document = client.openSignedIn();
        client.service.answer("sign-in", QByteArray("No."));
        Client::trigger(document, "actionSignIn");
        Client::signIn(document, u"bob"_s);
        QVERIFY(document->loginUserName().isEmpty() && document->loginPassword().isEmpty());
        Client::button(document->wndSignIn(), u"Create Account…"_s)->click();
        QTest::keyClick(document->wndSignUp(), Qt::Key_Escape);
        QTest::keyClick(document->wndSignIn(), Qt::Key_Escape);
        QVERIFY(document->window()->isVisible() && !document->wndSignIn()->isVisible());
        QCOMPARE(document->window()->findChild<QLabel *>(u"labelAccount"_s)->text(), u"Signed in as ann"_s);
        Client::trigger(document, "actionReload");
        QCOMPARE(client.service.bodies().last(), "p1=get-areas" + annsDigests);
        QCOMPARE(document->wheelView()->piecesOfWheel()->size(), std::size_t(2 * 8)); // more each time

        client.service.answer("sign-in", QByteArray("OK"));
        client.service.answer("get-areas", httpReply("<a><id>1</id></a>")); // incomplete
        Client::trigger(document, "actionSignIn");
        Client::signIn(document, u"bob"_s);
        QVERIFY(Client::button(document->wndSignIn(), u"Quit"_s));
        QTest::keyClick(document->wndSignIn(), Qt::Key_Escape); // nobody's wheel is on show any more
        QVERIFY(!document->window()->isVisible());
    }

    void aReloadKeepsTheSelectionAndWhateverCannotBeFetched()
    {
        Client client;
        const TarvexDocument *document = client.openSignedIn();
        document->listOfProjects()->selectItemAtIndex(1);
        client.service.answer("get-sets", setsAnswer({setRow("5", "New", "1 1 1 1 1 1 1 1"),
                                                      setRow("7", "First", "2 2 2 2 2 2 2 2"),
                                                      setRow("9", "Second", "3 3 3 3 3 3 3 3")}));
        client.service.answer("get-areas", ServiceReply{"", /*closes=*/true});
        document->window()->activateWindow(); // as a window manager does once the sheet has gone
        QTRY_VERIFY(document->window()->isActiveWindow());
        document->wheelView()->setFocus();
        Client::trigger(document, "actionReload");
        QVERIFY(document->wheelView()->hasFocus());
        QCOMPARE(document->listOfProjects()->currentText(), u"Second"_s);
        QCOMPARE(Client::average(document), u"3%"_s);
        QCOMPARE(Client::labels(document).join(u' '), u"Health Work Money Family Growth Fun Home Love"_s);
        QCOMPARE(document->project()->areas()->size(), std::size_t(8));
        QVERIFY(Client::guidance(document).startsWith(u"The areas could not be fetched"_s));
        auto *reload = document->window()->findChild<QPushButton *>(u"buttonReload"_s);
        QVERIFY(reload->isVisible());
        client.service.answer("get-areas", areasAnswer(eightNames));
        client.service.answer("get-sets", httpReply("<a><id>1</id></a>")); // incomplete
        reload->click();
        QVERIFY(document->wheelView()->hasFocus());
        QCOMPARE(document->listOfProjects()->count(), 3);
        QVERIFY(Client::guidance(document).contains(u"incomplete"_s));
        client.service.answer("get-sets", setsAnswer({setRow("9", "Second", "4 4 4 4 4 4 4 4")}));
        reload->click();
        QCOMPARE(Client::average(document), u"4%"_s);
        QVERIFY(!reload->isVisible());
    }

    void aSlowRequestIsCountedInTheWindow()
    {
        Client client;
        const TarvexDocument *document = client.openSignedIn();
        client.holdUntil([&] {
            return Client::guidance(document).startsWith(
                       u"Fetching the wheel and its sets… Waiting for the service: "_s) &&
                   (QTest::keyClick(document->window(), Qt::Key_F4, Qt::ControlModifier), true) && // Close
                   !document->window()->close() &&
                   document->wheelView()->mainData()->areas()->size() == 8; // is shown meanwhile
        });
        Client::trigger(document, "actionReload");
        QVERIFY(Client::guidance(document).startsWith(u"Click an area"_s) && client.alert.errors.isEmpty());
        QVERIFY(document->window()->isVisible());
    }
};

QTEST_MAIN(SignInFlowTest)
#include "SignInFlowTest.moc"
