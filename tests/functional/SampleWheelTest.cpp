#include "Client.h"

#include <QProcess>
#include <QTemporaryDir>

namespace {

/// A tarvex-server as built, on a free port, with the sample account in a database of its own.
class RealServer
{
public:
    RealServer()
    {
        const QString database =
            QStringLiteral("sqlite:") + m_folder.filePath(QStringLiteral("deep/tarvex.db"));
        QProcess sample;
        sample.start(QStringLiteral(TARVEX_SERVER),
                     {QStringLiteral("sample"), QStringLiteral("--database"), database});
        sample.waitForFinished();
        for (const QByteArray &line : sample.readAllStandardOutput().split('\n')) {
            if (line.startsWith("login: "))
                login = QString::fromUtf8(line.mid(7));
            if (line.startsWith("password: "))
                password = QString::fromUtf8(line.mid(10));
        }
        m_server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_server.start(QStringLiteral(TARVEX_SERVER),
                       {QStringLiteral("serve"), QStringLiteral("--listen"), QStringLiteral("127.0.0.1:0"),
                        QStringLiteral("--database"), database});
        m_server.waitForReadyRead();
        // "READY " and the address
        url = m_server.readLine().trimmed().mid(6);
    }

    ~RealServer()
    {
        m_server.terminate();
        m_server.waitForFinished();
    }

    QByteArray url;
    QString login;
    QString password;

private:
    QTemporaryDir m_folder;
    QProcess m_server;
};

} // namespace

class SampleWheelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theSampleLoginShowsTheSampleWheel()
    {
        const RealServer server;
        HeldInputWait wait;
        RecordingAlert alert;
        CurlExchange exchange(server.url, std::chrono::seconds(20), wait);
        DocumentController controller(exchange, alert);
        TarvexDocument *document = controller.openUntitledDocument();
        QTRY_VERIFY(document->wndSignIn()->isVisible());

        Client::signIn(document, server.login, QStringLiteral("wrong"));
        QVERIFY(document->wndSignIn()->isVisible());
        QVERIFY(!document->textSignInErrorMessage()->text().isEmpty());

        Client::signIn(document, server.login, server.password);
        QVERIFY2(!document->wndSignIn()->isVisible(), qPrintable(document->textSignInErrorMessage()->text()));
        QCOMPARE(Client::labels(document).join(u','),
                 QStringLiteral("Health,Career and Business,Finance,Family & Friends,Personal Growth,"
                                "Fun and Recreation,Home,Romance"));
        QCOMPARE(document->listOfProjects()->count(), 3);
        QCOMPARE(document->listOfProjects()->currentText(), QStringLiteral("Autumn 2026"));
        QCOMPARE(Client::percents(document).join(u' '), QStringLiteral("75% 40% 100% 66% 33% 50% 80% 25%"));
        QCOMPARE(Client::average(document), QStringLiteral("58%"));

        QVERIFY(alert.errors.isEmpty());
    }
};

QTEST_MAIN(SampleWheelTest)
#include "SampleWheelTest.moc"
