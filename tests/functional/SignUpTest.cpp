#include "Client.h"

#include <QProcess>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

/// The service as built, with an empty database and on a port of its own.
class Service
{
public:
    Service()
    {
        process.start(QStringLiteral(TARVEX_SERVER_BINARY),
                      {u"serve"_s, u"--listen"_s, u"127.0.0.1:0"_s, u"--database"_s,
                       u"sqlite:"_s + folder.filePath(u"wheel.db"_s)});
        if (!process.waitForReadyRead())
            qFatal("the service did not start");
        url = process.readLine().trimmed().sliced(QByteArray("READY ").size());
    }
    Service(const Service &) = delete;
    Service &operator=(const Service &) = delete;
    ~Service()
    {
        process.terminate();
        process.waitForFinished();
    }

    const QTemporaryDir folder;
    QProcess process;
    QByteArray url;
};

/// Fills in the sign-up sheet in a client of its own and gives what it says; null if it signed the user in.
QString refusal(const QByteArray &url, const QStringList &texts)
{
    Client client(std::chrono::seconds(20), url);
    const TarvexDocument *document = client.open();
    QTest::mouseClick(Client::button(document->wndSignIn(), u"Create Account…"_s), Qt::LeftButton);
    const Sheet *sheet = document->wndSignUp();
    const QStringList fields = {u"loginName"_s, u"loginEmail"_s, u"loginPassword"_s,
                                u"loginConfirmPassword"_s};
    for (qsizetype i = 0; i < fields.size(); ++i)
        sheet->findChild<QLineEdit *>(fields[i])->setText(texts[i]);
    QTest::mouseClick(Client::button(sheet, u"Create Account"_s), Qt::LeftButton);
    if (sheet->isVisible())
        return sheet->findChild<MessageLine *>(u"labelErrorMessage"_s)->text();
    const bool isLoaded = Client::labels(document).value(1) == u"Career and Business"_s &&
                          document->listOfProjects()->currentText() == u"My wheel"_s;
    return isLoaded ? QString() : u"signed in, but the wheel is not there"_s;
}

} // namespace

class SignUpTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatOneClientSignsUpAnotherSignsInWith_data()
    {
        QTest::addColumn<QString>("password");
        QTest::newRow("plain") << u"wheel"_s;
        QTest::newRow("form characters") << u"a&b=c+d%41?"_s;
        QTest::newRow("fields of the form") << u"x&p3=y&p4=z&type=json"_s;
        QTest::newRow("blanks") << u"  in and around  "_s;
        QTest::newRow("beyond ASCII") << u"p\u00E4ss\u00A0\u65E5\u672C \U0001F3AF"_s;
        QTest::newRow("quotation marks") << u"\"'\\{}"_s;
    }

    void whatOneClientSignsUpAnotherSignsInWith()
    {
        QFETCH(QString, password);
        const QString email = u"Zoe+%1@Example.org"_s.arg(++m_accounts);
        QCOMPARE(refusal(m_service.url, {u"Zo\u00EB & co=1"_s, email, password, password}), QString());

        Client second(std::chrono::seconds(20), m_service.url);
        const TarvexDocument *document = second.open();
        Client::signIn(document, email, password + u'x');
        QVERIFY(document->wndSignIn()->isVisible());
        Client::signIn(document, email, password);
        QVERIFY(!document->wndSignIn()->isVisible());
        QCOMPARE(document->listOfProjects()->currentText(), u"My wheel"_s);
    }

    void whatTheServiceRefusesIsShownInItsWords()
    {
        const QStringList ann = {u"Ann"_s, u"ann@example.org"_s, u"secret"_s, u"secret"_s};
        const auto with = [ann](int field, const QString &text) {
            QStringList texts = ann;
            texts[field] = text;
            return texts;
        };
        QCOMPARE(refusal(m_service.url, ann), QString());
        QCOMPARE(refusal(m_service.url, ann), u"An account with this e-mail address already exists."_s);
        QCOMPARE(refusal(m_service.url, with(/*field=*/1, QString(250, u'a') + u"@example.org"_s)),
                 u"The e-mail address is too long."_s);
        QCOMPARE(refusal(m_service.url, with(/*field=*/0, QString(40'000, u'n'))),
                 u"The name or the password is too long."_s);
        QCOMPARE(refusal(m_service.url, with(/*field=*/1, u"ann@example"_s)),
                 u"The email address you entered isn't valid."_s);
    }

private:
    Service m_service;
    int m_accounts = 0;
};

QTEST_MAIN(SignUpTest)
#include "SignUpTest.moc"
