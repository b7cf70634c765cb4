#include "BusyIndicator.h"
#include "Client.h"

#include <QTimer>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace {

const QByteArray annsForm = "p1=create-new-user&p2=ann@example.org&p3=secret&p4=Ann&type=json";
const QByteArray newDigests = "&p2=8B5A6A28FC840441BE692D74A81CCD1A&p3=5EBE2294ECD0E0F08EAB7690D2A6EE69";
const QStringList annsTexts = {u"Ann"_s, u"ann@example.org"_s, u"secret"_s, u"secret"_s};

/// JSON is easier on the eye here with the other quotation marks.
QByteArray json(QByteArray text)
{
    return text.replace('\'', '"');
}

/// A document whose sign-up sheet is up, reached by the sign-in sheet's button.
class SignUp
{
public:
    SignUp() : document(client.open()), sheet(document->wndSignUp())
    {
        client.service.answer("create-new-user", json("{'result': 'OK'}"));
        begin();
    }

    void begin() const { click(document->wndSignIn(), u"Create Account…"_s); }
    static void click(const QWidget *window, const QString &button)
    {
        QTest::mouseClick(Client::button(window, button), Qt::LeftButton);
    }
    void confirm() const { click(sheet, u"Create Account"_s); }

    void fill(const QStringList &texts) const
    {
        for (qsizetype i = 0; i < texts.size(); ++i)
            field(fields[i])->setText(texts[i]);
    }
    QStringList texts() const
    {
        QStringList texts;
        for (const QString &name : fields)
            texts += field(name)->text();
        return texts;
    }
    QLineEdit *field(const QString &name) const { return sheet->findChild<QLineEdit *>(name); }
    MessageLine *message() const { return sheet->findChild<MessageLine *>(u"labelErrorMessage"_s); }
    bool isHinting() const { return sheet->findChild<QLabel *>(u"labelSignUpHint"_s)->isVisible(); }
    QString status() const { return sheet->findChild<QLabel *>(u"labelSignUpStatus"_s)->text(); }
    static bool isSpinning(const QWidget *window)
    {
        return window->findChild<BusyIndicator *>(u"indicator"_s)->isAnimating();
    }

    const QStringList fields = {u"loginName"_s, u"loginEmail"_s, u"loginPassword"_s,
                                u"loginConfirmPassword"_s};
    Client client;
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
        const SignUp signUp;
        signUp.fill(annsTexts);
        QTest::keyClick(signUp.field(u"loginConfirmPassword"_s), Qt::Key_Return);
        QCOMPARE(signUp.client.service.bodies(),
                 (QList<QByteArray>{annsForm, "p1=get-sets" + newDigests, "p1=get-areas" + newDigests}));
        QVERIFY(!signUp.sheet->isVisible() && !signUp.document->wndSignIn()->isVisible());
        QCOMPARE(signUp.document->loginUserName(), u"ann@example.org"_s);
        QCOMPARE(signUp.document->loginPassword(), u"secret"_s);
        QCOMPARE(Client::average(signUp.document), u"45%"_s);
        QCOMPARE(signUp.document->wheelView()->piecesOfWheel()->size(), std::size_t(8));
        QVERIFY(!SignUp::isSpinning(signUp.document->wndSignIn()));
    }

    void aFaultyFormIsNotSent_data()
    {
        QTest::addColumn<QStringList>("texts");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("focus");
        const QString incomplete = u"You must fill in all fields."_s;
        const QString badAddress = u"The email address you entered isn't valid."_s;
        const QString different = u"Your password and confirmation password don't match."_s;
        QTest::newRow("nothing") << QStringList{u""_s, u""_s, u""_s, u""_s} << incomplete << u"loginName"_s;
        QTest::newRow("no second password, bad address")
            << QStringList{u"Ann"_s, u"ann"_s, u"a"_s, u""_s} << incomplete << u"loginConfirmPassword"_s;
        QTest::newRow("blanks count")
            << QStringList{u" "_s, u" "_s, u" "_s, u" "_s} << badAddress << u"loginEmail"_s;
        QTest::newRow("bad address, other password")
            << QStringList{u"Ann"_s, u"ann@example"_s, u"a"_s, u"b"_s} << badAddress << u"loginEmail"_s;
        QTest::newRow("other case") << QStringList{u"Ann"_s, u"ann@example.org"_s, u"Secret"_s, u"secret"_s}
                                    << different << u"loginConfirmPassword"_s;
    }

    void aFaultyFormIsNotSent()
    {
        QFETCH(QStringList, texts);
        QFETCH(QString, message);
        QFETCH(QString, focus);
        const SignUp signUp;
        signUp.fill(texts);
        signUp.confirm();
        QCOMPARE(signUp.message()->text(), message);
        QVERIFY(signUp.sheet->isVisible() && signUp.message()->isVisible());
        QCOMPARE(signUp.sheet->focusWidget()->objectName(), focus);
        QVERIFY(signUp.client.service.requests().isEmpty());
    }

    void anyOtherAnswerIsARefusal_data()
    {
        QTest::addColumn<ServiceReply>("reply");
        QTest::addColumn<QString>("message");
        const auto row = [](const char *name, const QByteArray &answer, const QString &message) {
            QTest::newRow(name) << httpReply(json(answer)) << message;
        };
        row("with a message", "{'result': 'Error', 'message': 'Taken \\u00e9 \\n.'}", u"Taken \u00e9 \n."_s);
        row("another case", "{'message': 'lower', 'result': 'ok'}", u"lower"_s);
        row("markup", "{'message': '<b>No</b> &amp; <img src=x>'}", u"<b>No</b> &amp; <img src=x>"_s);
        row("no members", "{}", u""_s);
        row("an array", "['result', 'OK']", u""_s);
        row("no text as result", "{'result': ['OK'], 'message': 'so'}", u"so"_s);
        row("no text as message", "{'result': 'Error', 'message': 7}", u""_s);
        row("not JSON", "OK", u""_s);
        row("cut short", "{'result': 'OK'", u""_s);
        row("empty", "", u""_s);
        row("nested without end", QByteArray(200'000, '['), u""_s);
        const QByteArray huge = QByteArray("<i>no</i> ").repeated(1'000'000); // 10 MB
        row("huge", "{'result': 'Error', 'message': '" + huge + "'}", QString::fromLatin1(huge));
        QTest::newRow("no answer") << ServiceReply{"", /*closes=*/true} << u""_s;
    }

    void anyOtherAnswerIsARefusal()
    {
        QFETCH(ServiceReply, reply);
        QFETCH(QString, message);
        SignUp signUp;
        signUp.client.service.answer("create-new-user", reply);
        signUp.fill(annsTexts);
        signUp.confirm();
        QVERIFY(signUp.message()->text() == message); // a difference of 10 MB would be printed for minutes
        QCOMPARE(signUp.isHinting(), message.isEmpty());
        QVERIFY(signUp.message()->isVisible() && signUp.sheet->isVisible() && signUp.sheet->height() < 600);
        QCOMPARE(signUp.texts(), annsTexts);
        QCOMPARE(signUp.client.service.bodies(), QList<QByteArray>{annsForm});
        QCOMPARE(signUp.client.alert.errors.size(), reply.closes ? 1 : 0);
        QVERIFY(signUp.document->loginUserName().isEmpty());
        QVERIFY(!SignUp::isSpinning(signUp.document->wndSignIn()));

        signUp.client.service.answer("create-new-user", json("{'result': 'OK', 'message': 'x'}"));
        signUp.confirm();
        QCOMPARE(signUp.client.service.requests().size(), 4);
        QVERIFY(!signUp.sheet->isVisible() && signUp.message()->text().isEmpty());
    }

    void theTwoSheetsTakeTurnsAndKeepTheirTexts()
    {
        const SignUp signUp;
        Sheet *signIn = signUp.document->wndSignIn();
        signIn->findChild<QLineEdit *>(u"textUsername"_s)->setText(u"typed"_s);
        QVERIFY(signUp.sheet->isVisible() && !signIn->isVisible());
        QCOMPARE(signUp.sheet->focusWidget(), signUp.field(u"loginName"_s));
        signUp.fill({u"Ann"_s, u"ann@example.org"_s, u"se"_s, u""_s});
        QTest::keyClick(signUp.sheet, Qt::Key_Escape);
        QVERIFY(!signUp.sheet->isVisible() && signIn->isVisible());
        QCOMPARE(signIn->findChild<QLineEdit *>(u"textUsername"_s)->text(), u"typed"_s);

        signUp.begin();
        QCOMPARE(signUp.texts(), (QStringList{u"Ann"_s, u"ann@example.org"_s, u"se"_s, u""_s}));
        QCOMPARE(signUp.sheet->focusWidget(), signUp.field(u"loginConfirmPassword"_s));
        QVERIFY(!signUp.field(u"loginPassword"_s)->displayText().contains(u's'));
        QCOMPARE(signUp.field(u"loginConfirmPassword"_s)->echoMode(), QLineEdit::Password);
        SignUp::click(signUp.sheet, u"Cancel"_s);
        QVERIFY(signIn->isVisible() && !signUp.sheet->isVisible());
        QVERIFY(signUp.client.service.requests().isEmpty());
        QCOMPARE(signUp.client.controller.documents().size(), std::size_t(1));
    }

    void whileItRunsTheSheetSaysSoAndInputIsDropped()
    {
        SignUp signUp;
        signUp.fill(annsTexts);
        signUp.client.service.hold();
        bool seen = false;
        QTimer meanwhile;
        connect(&meanwhile, &QTimer::timeout, this, [&] {
            if (signUp.client.service.requests().isEmpty())
                return;
            meanwhile.stop();
            seen = !signUp.status().isEmpty() && !signUp.message()->isVisible() &&
                   SignUp::isSpinning(signUp.document->wndSignIn()) && !SignUp::isSpinning(signUp.sheet) &&
                   !signUp.field(u"loginName"_s)->isEnabled();
            signUp.confirm();
            QTest::keyClick(signUp.sheet, Qt::Key_Escape);
            for (const char *slot : {"cickRegister", "cancelRegister", "registerClicked"})
                QMetaObject::invokeMethod(signUp.document, slot); // what gets past any filter
            signUp.sheet->windowHandle()->close();
            signUp.client.service.release();
        });
        meanwhile.start(5);
        signUp.confirm();
        QVERIFY(seen);
        QVERIFY(signUp.status().isEmpty() && signUp.field(u"loginName"_s)->isEnabled());
        QCOMPARE(signUp.client.service.requests().size(), 3);
        QVERIFY(!signUp.sheet->isVisible() && !signUp.document->wndSignIn()->isBegun());
    }

    void aLoadThatEndsEarlyLeavesTheSheetWithAWordOnIt()
    {
        SignUp signUp;
        signUp.client.service.answer("get-sets", QByteArray("<a><id>1</id></a>"));
        signUp.fill(annsTexts);
        signUp.confirm();
        QVERIFY(signUp.sheet->isVisible() && signUp.message()->text().contains(u"was created"_s));
        QVERIFY(!signUp.client.controller.isBusy() && signUp.status().isEmpty());
    }
};

QTEST_MAIN(SignUpFlowTest)
#include "SignUpFlowTest.moc"
