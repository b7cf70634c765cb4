#include "Client.h"

namespace {

const QByteArray annsForm = "p1=create-new-user&p2=ann@example.org&p3=secret&p4=Ann&type=json";
const QByteArray newDigests = "&p2=8B5A6A28FC840441BE692D74A81CCD1A&p3=5EBE2294ECD0E0F08EAB7690D2A6EE69";
const QString anns = u"Ann/ann@example.org/secret/secret"_s;

/// A client whose sign-in sheet is up, against a service that accepts every new account.
struct NewUser : Client
{
    NewUser() : document(open()), sheet(document->wndSignUp())
    {
        service.answer("create-new-user", QByteArray(R"({"result": "OK", "message": "x"})"));
    }
    /// Goes to the sheet, fills it in and clicks its button.
    void signUp(const QString &texts = anns) const
    {
        QTest::mouseClick(button(document->wndSignIn(), u"Create Account…"_s), Qt::LeftButton);
        const char *const fields[] = {"loginName", "loginEmail", "loginPassword", "loginConfirmPassword"};
        for (int i = 0; i < 4; ++i)
            sheet->findChild<QLineEdit *>(QLatin1String(fields[i]))->setText(texts.section(u'/', i, i));
        QTest::mouseClick(button(sheet, u"Create Account"_s), Qt::LeftButton);
    }
    MessageLine *message() const { return sheet->findChild<MessageLine *>(u"labelErrorMessage"_s); }
    QLabel *label(const QString &name) const { return sheet->findChild<QLabel *>(name); }
    static bool isSpinning(const QWidget *window)
    {
        return window->findChild<BusyIndicator *>(u"indicator"_s)->isAnimating();
    }

    TarvexDocument *document;
    Sheet *sheet;
};

} // namespace

class SignUpFlowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aNewAccountIsSignedInWithItsEmailAddress()
    {
        const NewUser client;
        client.signUp();
        QCOMPARE(client.service.bodies(),
                 (QList<QByteArray>{annsForm, "p1=get-sets" + newDigests, "p1=get-areas" + newDigests}));
        QVERIFY(!client.sheet->isVisible() && !client.document->wndSignIn()->isVisible());
        QCOMPARE(client.document->loginUserName(), u"ann@example.org"_s);
        QCOMPARE(Client::average(client.document), u"45%"_s);
    }

    void aFaultyFormIsNotSent_data() { addSampleRows("faulty-forms.txt"); }
    void aFaultyFormIsNotSent()
    {
        const auto [texts, message, focus] = sampleRow<3>();
        const NewUser client;
        client.signUp(QString::fromUtf8(texts));
        QCOMPARE(client.message()->text().toUtf8(), message);
        QVERIFY(client.message()->isVisible());
        QCOMPARE(client.sheet->focusWidget()->objectName().toUtf8(), focus);
        QVERIFY(client.service.requests().isEmpty());
    }

    void anyOtherAnswerIsARefusal_data() { addSampleRows("sign-up-answers.txt"); }
    void anyOtherAnswerIsARefusal()
    {
        const auto [answer, message, focus] = sampleRow<3>();
        NewUser client;
        const bool isNone = answer.isEmpty();
        client.service.answer("create-new-user", isNone ? cutReply() : httpReply(answer));
        client.signUp();
        QCOMPARE(client.sheet->focusWidget()->objectName().toUtf8(), focus);
        QVERIFY(client.message()->text().toUtf8() == message); // not compared: 10 MB are long in print
        const QLabel *hint = client.label(u"labelSignUpHint"_s);
        QVERIFY(hint->isVisible() == message.isEmpty() &&
                hint->text().contains(u"127.0.0.1"_s) != hint->isHidden());
        QCOMPARE(hint->text().contains(u"not seem to be"_s), answer.startsWith('['));
        QVERIFY(client.message()->isVisible() && client.sheet->height() < 600);
        QCOMPARE(client.service.bodies(), QList<QByteArray>{annsForm});
        QCOMPARE(client.alert.errors.size(), isNone ? 1 : 0);
        QVERIFY(client.document->loginUserName().isEmpty());

        client.service.answer("create-new-user", QByteArray(R"({"result": "OK"})"));
        QTest::keyClick(client.sheet, Qt::Key_Return); // the fields have kept their texts
        QCOMPARE(client.service.bodies().value(1), annsForm);
        QVERIFY(!client.sheet->isVisible() && client.message()->text().isEmpty());
    }

    void theTwoSheetsTakeTurnsAndKeepTheirTexts()
    {
        const NewUser client;
        const Sheet *signIn = client.document->wndSignIn();
        signIn->findChild<QLineEdit *>(u"textUsername"_s)->setText(u"typed"_s);
        client.signUp(u"Ann/ann@example.org/secret/"_s);
        QVERIFY(client.sheet->isVisible() && !signIn->isVisible());
        for (const auto *password :
             client.sheet->findChildren<QLineEdit *>(QRegularExpression(u"Password"_s)))
            QCOMPARE(password->echoMode(), QLineEdit::Password);
        QTest::keyClick(client.sheet, Qt::Key_Escape);
        QVERIFY(!client.sheet->isVisible() && signIn->isVisible());
        QCOMPARE(signIn->findChild<QLineEdit *>(u"textUsername"_s)->text(), u"typed"_s);

        QTest::mouseClick(Client::button(signIn, u"Create Account…"_s), Qt::LeftButton);
        QCOMPARE(client.sheet->focusWidget()->objectName(), u"loginConfirmPassword"_s);
        QCOMPARE(client.sheet->findChild<QLineEdit *>(u"loginPassword"_s)->text(), u"secret"_s);
        QVERIFY(client.service.requests().isEmpty());
    }

    void whileItRunsTheSheetSaysSoAndInputIsDropped()
    {
        NewUser client;
        client.holdUntil([&] {
            if (!client.label(u"labelSignUpStatus"_s)->text().contains(u"of at most 20\u00A0s"_s) ||
                client.message()->isVisible() || !NewUser::isSpinning(client.document->wndSignIn()) ||
                NewUser::isSpinning(client.sheet))
                return false; // which is seen after a second
            QTest::mouseClick(Client::button(client.sheet, u"Create Account"_s), Qt::LeftButton);
            QTest::keyClick(client.sheet, Qt::Key_Escape);
            for (const char *slot : {"cickRegister", "cancelRegister", "registerClicked"})
                QMetaObject::invokeMethod(client.document, slot); // what gets past any filter
            return true;
        });
        client.service.answer("get-sets", QByteArray("<a><id>1</id></a>")); // and the load ends early
        client.signUp();
        QCOMPARE(client.service.requests().size(), 2);
        QVERIFY(client.label(u"labelSignUpStatus"_s)->text().isEmpty());
        QVERIFY(!NewUser::isSpinning(client.document->wndSignIn()) && !client.controller.isBusy());
        QVERIFY(client.sheet->isVisible() && client.message()->text().contains(u"was created"_s));
    }
};

QTEST_MAIN(SignUpFlowTest)
#include "SignUpFlowTest.moc"
