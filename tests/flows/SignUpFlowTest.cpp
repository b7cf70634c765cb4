#include "BusyIndicator.h"
#include "Client.h"

namespace {

const QByteArray annsForm = "p1=create-new-user&p2=ann@example.org&p3=secret&p4=Ann&type=json";
const QByteArray newDigests = "&p2=8B5A6A28FC840441BE692D74A81CCD1A&p3=5EBE2294ECD0E0F08EAB7690D2A6EE69";
const QString anns = u"Ann/ann@example.org/secret/secret"_s;

/// JSON is easier on the eye here with the other quotation marks.
QByteArray json(QByteArray text)
{
    return text.replace('\'', '"');
}

/// A client whose sign-in sheet is up, against a service that accepts every new account.
struct NewUser : Client
{
    NewUser() : document(open()), sheet(document->wndSignUp())
    {
        service.answer("create-new-user", json("{'result': 'OK', 'message': 'x'}"));
    }
    void signUp(const QString &texts = anns) const { Client::signUp(document, texts.split(u'/')); }
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

    void aFaultyFormIsNotSent_data() { addSampleRows("faulty-forms.txt", {"texts", "message", "focus"}); }
    void aFaultyFormIsNotSent()
    {
        QFETCH(QByteArray, texts);
        const NewUser client;
        client.signUp(QString::fromUtf8(texts));
        QTEST(client.message()->text().toUtf8(), "message");
        QVERIFY(client.message()->isVisible());
        QTEST(client.sheet->focusWidget()->objectName().toUtf8(), "focus");
        QVERIFY(client.service.requests().isEmpty());
    }

    void anyOtherAnswerIsARefusal_data() { addSampleRows("sign-up-answers.txt", {"answer", "message"}); }
    void anyOtherAnswerIsARefusal()
    {
        QFETCH(QByteArray, answer);
        QFETCH(QByteArray, message);
        for (QByteArray *text : {&answer, &message})
            text->replace('*', QByteArray("<i>no</i> ").repeated(1'000'000));
        NewUser client;
        const bool isNone = answer.isEmpty();
        client.service.answer("create-new-user", isNone ? cutReply() : httpReply(answer));
        client.signUp();
        QVERIFY(client.message()->text().toUtf8() == message); // not compared: 10 MB are long in print
        QCOMPARE(client.label(u"labelSignUpHint"_s)->isVisible(), message.isEmpty());
        QVERIFY(client.message()->isVisible() && client.sheet->height() < 600);
        QCOMPARE(client.service.bodies(), QList<QByteArray>{annsForm});
        QCOMPARE(client.alert.errors.size(), isNone ? 1 : 0);
        QVERIFY(client.document->loginUserName().isEmpty());

        client.service.answer("create-new-user", json("{'result': 'OK'}"));
        QTest::keyClick(client.sheet, Qt::Key_Return); // the fields have kept their texts
        QCOMPARE(client.service.bodies().value(1), annsForm);
        QVERIFY(!client.sheet->isVisible() && client.message()->text().isEmpty());
    }

    void theFocusGoesToTheFieldThatARefusalNames()
    {
        NewUser client;
        client.signUp(u"Ann/ann@example.org/secret/"_s);
        for (const auto &[message, field] :
             {std::pair("An account with this e-mail address already exists.", "loginEmail"),
              std::pair("EMAIL?", "loginEmail"),
              std::pair("The name or the password is too long.", "loginName"),
              std::pair("This user name is taken.", "loginName"),
              std::pair("Choose a longer password", "loginPassword"),
              std::pair("Enamel and surnames.", "loginConfirmPassword")}) {
            client.service.answer("create-new-user", json(R"({'message': ')" + QByteArray(message) + "'}"));
            auto *last = client.sheet->findChild<QLineEdit *>(u"loginConfirmPassword"_s);
            last->setText(u"secret"_s);
            last->setFocus();
            QTest::keyClick(last, Qt::Key_Return);
            QCOMPARE(client.sheet->focusWidget()->objectName(), QString::fromLatin1(field));
        }
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
        bool seen = false;
        client.holdUntil([&] {
            if (!client.label(u"labelSignUpStatus"_s)->text().contains(u"of at most 20\u00A0s"_s))
                return false; // which is seen after a second
            seen = !client.message()->isVisible() && NewUser::isSpinning(client.document->wndSignIn()) &&
                   !NewUser::isSpinning(client.sheet);
            QTest::mouseClick(Client::button(client.sheet, u"Create Account"_s), Qt::LeftButton);
            QTest::keyClick(client.sheet, Qt::Key_Escape);
            for (const char *slot : {"cickRegister", "cancelRegister", "registerClicked"})
                QMetaObject::invokeMethod(client.document, slot); // what gets past any filter
            return true;
        });
        client.service.answer("get-sets", QByteArray("<a><id>1</id></a>")); // and the load ends early
        client.signUp();
        QVERIFY(seen);
        QCOMPARE(client.service.requests().size(), 2);
        QVERIFY(client.label(u"labelSignUpStatus"_s)->text().isEmpty());
        QVERIFY(!NewUser::isSpinning(client.document->wndSignIn()) && !client.controller.isBusy());
        QVERIFY(client.sheet->isVisible() && client.message()->text().contains(u"was created"_s));
    }
};

QTEST_MAIN(SignUpFlowTest)
#include "SignUpFlowTest.moc"
