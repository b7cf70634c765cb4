// The client and the pages of a real service: what one of them does the other one shows.

#include "Client.h"
#include "TVXManager.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QUrlQuery>

using namespace Qt::StringLiterals;

namespace {
const QString login = u"anna@example.org"_s;
const QString password = u"a&b=c+d%26"_s;

/// The service in a folder of its own.
class RealService
{
public:
    RealService()
    {
        m_process.setWorkingDirectory(m_folder.path());
        m_process.start(QStringLiteral(TARVEX_SERVER_BINARY),
                        {u"serve"_s, u"--listen"_s, u"127.0.0.1:0"_s, u"--database"_s, u"sqlite:wheel.db"_s});
        if (!m_process.waitForReadyRead())
            qFatal("the service does not start");
        m_url = QString::fromUtf8(m_process.readLine()).section(u' ', 1).trimmed();
    }
    ~RealService()
    {
        m_process.terminate();
        m_process.waitForFinished();
    }
    const QString &url() const { return m_url; }

private:
    QTemporaryDir m_folder;
    QProcess m_process;
    QString m_url;
};

/// A browser that keeps cookies and follows where it is led.
class Browser
{
public:
    explicit Browser(const QString &service) : m_site(QUrl(service).resolved(QUrl(u"/"_s))) {}

    QString get(const QString &path) { return page(m_network.get(request(path))); }
    QString post(const QString &path, const QList<std::pair<QString, QString>> &fields)
    {
        QByteArray form = "token=" + m_token;
        for (const auto &[name, value] : fields)
            form += "&" + QUrl::toPercentEncoding(name) + "=" + QUrl::toPercentEncoding(value);
        QNetworkRequest sent = request(path);
        sent.setHeader(QNetworkRequest::ContentTypeHeader, u"application/x-www-form-urlencoded"_s);
        return page(m_network.post(sent, form));
    }

private:
    QNetworkRequest request(const QString &path) const
    {
        return QNetworkRequest(m_site.resolved(QUrl(path)));
    }
    QString page(QNetworkReply *reply)
    {
        QSignalSpy(reply, &QNetworkReply::finished).wait();
        const QString page = QString::fromUtf8(reply->readAll());
        reply->deleteLater();
        const auto token = QRegularExpression(u"name=\"token\" value=\"(\\w+)\""_s).match(page);
        if (token.hasMatch())
            m_token = token.captured(1).toLatin1();
        return page;
    }

    QUrl m_site;
    QNetworkAccessManager m_network;
    QByteArray m_token;
};
} // namespace

class PagesFlowTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void whatOneProgramDoesTheOtherOneShows()
    {
        const RealService service;
        HeldInputWait wait;
        RecordingAlert alert;
        RecordingLinks links;
        CurlExchange exchange(service.url().toLatin1(), /*deadline=*/std::chrono::seconds(20), wait);
        DocumentController controller(exchange, alert, links, std::chrono::milliseconds(0));
        TVXManager manager(exchange, alert);
        QVERIFY(manager.createNewUser(u"Anna"_s, login, password).contains(u"OK"_s));
        TarvexDocument *document = controller.openUntitledDocument();
        QTRY_VERIFY(document->wndSignIn()->isVisible());
        Client::signIn(document, login, password);
        QTRY_COMPARE(Client::average(document), u"100%"_s);

        manager.createSestUsingLogin(login, password, /*withName=*/u"Summer & sun"_s);
        TVXSetsList sets;
        QVERIFY(manager.getSetsFromServerByUsingLogin(login, password, sets));
        const qint64 summer = sets[1]->idOfSets();
        manager.createGoalUsingLogin(login, password, /*withName=*/u"Swim <far>"_s, /*andPriority=*/5,
                                     /*andChecked=*/false,
                                     /*forSetsId=*/summer, /*forAreaId=*/1);
        Browser browser(service.url());
        browser.post(u"/sign-in"_s, {{u"login"_s, login}, {u"password"_s, password}});
        const QString wheel = browser.get(u"/wheel?set=%1"_s.arg(summer));
        QVERIFY(wheel.contains(u"Summer &amp; sun"_s));
        QVERIFY(wheel.contains(u"Swim &lt;far&gt;"_s));

        manager.deleteSestUsingLogin(login, password, /*forSetsId=*/summer);
        QVERIFY(browser.get(u"/wheel?set=%1"_s.arg(summer)).contains(u"It was deleted meanwhile"_s));
        browser.get(u"/account/deleted"_s);
        browser.post(u"/account/deleted"_s, {{u"set"_s, QString::number(summer)}});
        Client::trigger(document, "actionReload");
        QTRY_COMPARE(document->listOfProjects()->count(), 2);
        document->listOfProjects()->selectItemAtIndex(1);
        QTRY_COMPARE(Client::average(document), u"87%"_s);
        QCOMPARE(Client::percents(document).first(), u"0%"_s);
        QCOMPARE(alert.errors, QStringList());
    }
};

QTEST_MAIN(PagesFlowTest)
#include "PagesFlowTest.moc"
