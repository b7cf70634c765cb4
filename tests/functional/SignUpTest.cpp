#include "Client.h"

#include <QProcess>
#include <QTemporaryDir>

/// The client's own windows against the service as built, with an empty database and on a port of its own.
class SignUpTest : public QObject
{
    Q_OBJECT

private:
    /// Signs up in a client of its own and gives what the sheet says; null if it went down.
    QString refusal(const QString &name, const QString &email, const QString &password) const
    {
        Client client(std::chrono::seconds(20), m_url);
        const TarvexDocument *document = client.open();
        Client::signUp(document, {name, email, password, password});
        if (!document->wndSignUp()->isVisible())
            return Client::labels(document).contains(u"Career and Business"_s) ? QString() : u"no wheel"_s;
        return document->wndSignUp()->findChild<MessageLine *>(u"labelErrorMessage"_s)->text();
    }

    const QTemporaryDir m_folder;
    QProcess m_service;
    QByteArray m_url;

private Q_SLOTS:
    void initTestCase()
    {
        m_service.start(QStringLiteral(TARVEX_SERVER_BINARY),
                        {u"serve"_s, u"--listen"_s, u"127.0.0.1:0"_s, u"--database"_s,
                         u"sqlite:"_s + m_folder.filePath(u"wheel.db"_s)});
        QVERIFY(m_service.waitForReadyRead());
        m_url = m_service.readLine().trimmed().sliced(QByteArray("READY ").size());
    }

    void whatOneClientSignsUpAnotherSignsInWith()
    {
        const QString email = u"Zoe+1@Example.org"_s;
        const QString password =
            u"  a&b=c+d%41&p3=x&p4=y&type=json \"'\\ p\u00E4ss\u00A0\u65E5 \U0001F3AF "_s;
        QCOMPARE(refusal(u"Zo\u00EB & co=1"_s, email, password), QString());
        Client second(std::chrono::seconds(20), m_url);
        const TarvexDocument *document = second.open();
        Client::signIn(document, email, password.trimmed());
        QVERIFY(document->wndSignIn()->isVisible());
        Client::signIn(document, email, password);
        QVERIFY(!document->wndSignIn()->isVisible());
        QCOMPARE(document->listOfProjects()->currentText(), u"My wheel"_s);
    }

    void whatTheServiceRefusesIsShownInItsWords()
    {
        const QString email = u"ann@example.org"_s;
        QCOMPARE(refusal(u"Ann"_s, email, u"secret"_s), QString());
        QCOMPARE(refusal(u"Ann"_s, email, u"other"_s),
                 u"An account with this e-mail address already exists."_s);
        QCOMPARE(refusal(u"Ann"_s, QString(250, u'a') + email, u"secret"_s),
                 u"The e-mail address is too long."_s);
    }

    void cleanupTestCase()
    {
        m_service.terminate();
        QVERIFY(m_service.waitForFinished());
    }
};

QTEST_MAIN(SignUpTest)
#include "SignUpTest.moc"
