#include "Client.h"

#include "TVXManager.h"

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
        QCOMPARE(Client::labels(document),
                 (QStringList{QStringLiteral("Health"), QStringLiteral("Career and Business"),
                              QStringLiteral("Finance"), QStringLiteral("Family & Friends"),
                              QStringLiteral("Personal Growth"), QStringLiteral("Fun and Recreation"),
                              QStringLiteral("Home"), QStringLiteral("Romance")}));
        QStringList sets;
        for (int index = 0; index < document->listOfProjects()->count(); ++index)
            sets += document->listOfProjects()->itemText(index);
        QCOMPARE(sets.join(u','), QStringLiteral("Autumn 2026,Summer 2026,Spring 2026"));
        QCOMPARE(Client::percents(document).join(u' '), QStringLiteral("75% 40% 100% 66% 33% 50% 80% 25%"));
        QCOMPARE(Client::average(document), QStringLiteral("58%"));

        TVXManager manager(exchange, alert);
        TVXGoalList goals;
        const auto &[areas, shown] = std::pair(document->project()->areas(), document->currentSet());
        manager.getGoalsFormServeByUsingLogin(server.login, server.password, areas->front()->idOfArea(),
                                              shown->idOfSets(), goals);
        const auto done =
            std::count_if(goals.begin(), goals.end(), [](const auto &g) { return g->isChecked(); });
        QCOMPARE(QString::number(done * 100 / static_cast<int>(goals.size())), shown->percent1());

        TVXGoalList all;
        manager.getGoalsForPrintUsingLogin(server.login, server.password, shown->idOfSets(), all);
        QVERIFY(all.size() > goals.size());
        const TVXGoalPtr random =
            manager.getRandomGoalUsingLogin(server.login, server.password, shown->idOfSets());
        QVERIFY(std::any_of(all.begin(), all.end(), [&](const TVXGoalPtr &goal) {
            return goal->idOfGoal() == random->idOfGoal() && goal->nameOfGoal() == random->nameOfGoal() &&
                   !goal->isChecked();
        }));
        QVERIFY(alert.errors.isEmpty());
    }
};

QTEST_MAIN(SampleWheelTest)
#include "SampleWheelTest.moc"
