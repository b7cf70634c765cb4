#include "TVXManager.h"
#include "CurlExchange.h"
#include "LoopbackService.h"
#include "ServiceFakes.h"

#include <functional>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString login = u"abc"_s;
const QString password;
const QByteArray credentials = "&p2=900150983CD24FB0D6963F7D28E17F72&p3=D41D8CD98F00B204E9800998ECF8427E";

/// A manager with its service at the other end of a real wire.
struct Conversation
{
    explicit Conversation(const QByteArray &url = {})
        : exchange(url.isEmpty() ? service.url() : url, 10s, wait)
    {
    }

    LoopbackService service;
    RecordingWait wait;
    CurlExchange exchange;
    RecordingAlert alert;
    TVXManager manager{exchange, alert};
};

/// A read as one line: what the list holds, after whatever the operation threw.
using Read = std::function<QString(TVXManager &)>;

template<typename List, typename Operation, typename Show>
QString readInto(List &list, Operation operation, Show show)
{
    QString thrown;
    try {
        operation();
    } catch (const std::out_of_range &) {
        thrown = u"thrown|"_s;
    }
    QStringList records;
    for (const auto &record : list)
        records.append(show(*record));
    return thrown + records.join(u'|');
}

QString shown(const TVXGoal &goal)
{
    return u"%1/%2/%3/%4/%5"_s.arg(goal.idOfGoal())
        .arg(goal.nameOfGoal())
        .arg(goal.idOfArea())
        .arg(goal.priorityOfGoal())
        .arg(goal.isChecked() ? u"done"_s : u"open"_s);
}

QString readSets(TVXManager &manager)
{
    TVXSetsList sets = {std::make_shared<TVXSets>()};
    const auto show = [](const TVXSets &set) {
        QStringList texts = {QString::number(set.idOfSets()), set.name()};
        for (int area = 0; area < TVXSets::areaCount; ++area)
            texts.append(set.percentOfArea(area));
        return texts.join(u'/');
    };
    return readInto(
        sets, [&] { manager.getSetsFromServerByUsingLogin(login, password, sets); }, show);
}

QString readAreas(TVXManager &manager)
{
    TVXAreaList areas = {std::make_shared<TVXArea>()};
    const auto show = [](const TVXArea &area) {
        return u"%1/%2/%3/%4"_s.arg(area.idOfArea()).arg(area.name(), area.color()).arg(area.valueOfArea());
    };
    return readInto(
        areas, [&] { manager.getAreasFormServeByUsingLogin(login, password, areas); }, show);
}

QString readGoals(TVXManager &manager)
{
    TVXGoalList goals = {std::make_shared<TVXGoal>()};
    return readInto(
        goals,
        [&] { manager.getGoalsFormServeByUsingLogin(login, password, /*forArea=*/3, /*forSets=*/12, goals); },
        shown);
}

QString readGoalsForPrint(TVXManager &manager)
{
    TVXGoalList goals = {std::make_shared<TVXGoal>()};
    return readInto(
        goals, [&] { manager.getGoalsForPrintUsingLogin(login, password, /*forSetsId=*/12, goals); }, shown);
}

QString readRandomGoal(TVXManager &manager)
{
    TVXGoalPtr goal;
    try {
        goal = manager.getRandomGoalUsingLogin(login, password, /*forSetsId=*/12);
    } catch (const std::out_of_range &) {
        return u"thrown"_s;
    }
    if (!goal)
        return u"none"_s;
    return goal->nameOfGoal().isNull() ? u"nameless "_s + shown(*goal) : shown(*goal);
}

QByteArray xml(const QByteArray &inside)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<answer>" + inside + "</answer>\n";
}

QByteArray percents(int first, int last)
{
    QByteArray elements;
    for (int i = first; i <= last; ++i) {
        const QByteArray name = "percent" + QByteArray::number(i);
        elements += "<" + name + ">" + QByteArray::number(10 * i) + "</" + name + ">";
    }
    return elements;
}

} // namespace

Q_DECLARE_METATYPE(Read)

class TVXManagerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsSendOneFormAndFillRecords_data();
    void readsSendOneFormAndFillRecords();
    void oddAnswersEndQuietly_data();
    void oddAnswersEndQuietly();
    void theErrorWordIsRecognised_data();
    void theErrorWordIsRecognised();
    void aMissingAnswerIsShownOnceOrNotAtAll_data();
    void aMissingAnswerIsShownOnceOrNotAtAll();
    void signInAnswersTheServicesText_data();
    void signInAnswersTheServicesText();
    void signUpSendsItsValuesAsTyped();
    void signUpAnswersTheServicesText_data();
    void signUpAnswersTheServicesText();
    void aCompleteFormIsSentAsItIs();
    void addressesAreJudgedWhole_data();
    void addressesAreJudgedWhole();
};

void TVXManagerTest::readsSendOneFormAndFillRecords_data()
{
    QTest::addColumn<Read>("read");
    QTest::addColumn<QByteArray>("form");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("records");

    QTest::newRow("sets") << Read(readSets) << "p1=get-sets" + credentials
                          << xml("<id>4</id><name>My {_amp_} yours</name>" + percents(1, 8) +
                                 "<id>9</id><name>Été</name>" + percents(1, 7) + "<percent8> 07%</percent8>")
                          << u"4/My & yours/10/20/30/40/50/60/70/80|9/Été/10/20/30/40/50/60/70/ 07%"_s;
    QTest::newRow("areas") << Read(readAreas) << "p1=get-areas" + credentials
                           << xml("<id>1</id><name>Health</name><color>#{_d_}</color><value>7 of 9</value>")
                           << u"1/Health/#{_d_}/7"_s;
    QTest::newRow("goals of an area")
        << Read(readGoals) << "p1=get-goals" + credentials + "&p4=12&p5=3"
        << xml("<id>99999999999</id><name>Run 5{_d_}2 "
               "km</name><priority>9</priority><checked>y</checked><area>3</area>"
               "<id>x</id><name/><priority>-5</priority><checked>Y</checked>"
               "<id> 3</id><name>{_end_}</name><priority/><checked>1</checked>")
        << u"2147483647/Run 5.2 km/0/9/done|0//0/-5/open|3/{_end_}/0/0/open"_s;
    QTest::newRow("goals of a set")
        << Read(readGoalsForPrint) << "p1=get-complex-goals-for-sets" + credentials + "&p4=12"
        << xml("<goal><id>5</id><name>a</name><area>8</area><priority>0</priority><checked>y</checked></goal>"
               "<goal><id>4</id><name>b</name><area>1</area><priority>5</priority><checked>yes</checked></"
               "goal>")
        << u"5/a/8/0/done|4/b/1/5/open"_s;
    QTest::newRow("random goal")
        << Read(readRandomGoal) << "p1=get-random-goal" + credentials + "&p4=12"
        << xml("<id>5</id><name>caf&#233;{_quest_}</name><area>8</area><priority>9</priority>"
               "<checked>y</checked><id>6</id>")
        << u"5/café?/8/0/open"_s;
}

void TVXManagerTest::readsSendOneFormAndFillRecords()
{
    QFETCH(Read, read);
    QFETCH(QByteArray, form);
    QFETCH(QByteArray, answer);
    Conversation conversation;
    conversation.service.answer(form.split('&').first().sliced(3), answer);

    QTEST(read(conversation.manager), "records");

    QCOMPARE(conversation.service.bodies(), {form});
    QCOMPARE(conversation.alert.errors, QStringList());
}

void TVXManagerTest::oddAnswersEndQuietly_data()
{
    QTest::addColumn<Read>("read");
    QTest::addColumn<QByteArray>("kind");
    QTest::addColumn<ServiceReply>("reply");
    QTest::addColumn<QString>("records");

    const auto sets = [](const char *name, const ServiceReply &reply, const QString &records) {
        QTest::addRow("sets, %s", name) << Read(readSets) << QByteArray("get-sets") << reply << records;
    };
    const auto random = [](const char *name, const ServiceReply &reply, const QString &records) {
        QTest::addRow("random goal, %s", name)
            << Read(readRandomGoal) << QByteArray("get-random-goal") << reply << records;
    };
    const QByteArray set = "<id>1</id><name>a</name>" + percents(1, 8);
    const QString first = u"1/a/10/20/30/40/50/60/70/80"_s;
    sets("empty body", httpReply(""), u""_s);
    sets("plain text", httpReply("out of order"), u""_s);
    sets("error page", httpReply("<html><br></html>", "500 Oops"), u""_s);
    sets("sound answer under a wrong status", httpReply(xml(set), "404 Not Found"), first);
    sets("cut document", httpReply(xml(set).chopped(5)), u""_s);
    sets("invalid UTF-8", httpReply(xml(set + "\xe9")), u""_s);
    sets("declared Latin-1",
         httpReply("<?xml version='1.0' encoding='ISO-8859-1'?><s><id>1</id><name>\xe9</name>" +
                   percents(1, 8) + "</s>"),
         u"1/é/10/20/30/40/50/60/70/80"_s);
    sets("no ids", httpReply(xml("<name>a</name>" + percents(1, 8))), u""_s);
    sets("no names", httpReply(xml("<id>1</id>" + percents(1, 8))), u"thrown|"_s);
    sets("a percentage short", httpReply(xml(set + "<id>2</id><name>b</name>" + percents(1, 7))),
         u"thrown|"_s + first);
    sets("names in excess", httpReply(xml("<name>first</name>" + set)), u"1/first/10/20/30/40/50/60/70/80"_s);

    random("empty body", httpReply(""), u"nameless 0//0/0/open"_s);
    random("plain text", httpReply("none left"), u"nameless 0//0/0/open"_s);
    random("non-ASCII bytes", httpReply(xml("<id>1</id><name>é</name><area>2</area>")), u"none"_s);
    random("no area", httpReply(xml("<id>1</id><name>a</name>")), u"thrown"_s);
    random("no elements", httpReply(xml("")), u"thrown"_s);
    random("line break behind the word", httpReply("Error\n"), u"nameless 0//0/0/open"_s);

    QTest::newRow("areas, no values") << Read(readAreas) << QByteArray("get-areas")
                                      << httpReply(xml("<id>1</id><name>a</name><color/>")) << u"thrown|"_s;
    QTest::newRow("goals, second unchecked")
        << Read(readGoals) << QByteArray("get-goals")
        << httpReply(xml("<id>1</id><name>a</name><priority>5</priority><checked>y</checked>"
                         "<id>2</id><name>b</name><priority>5</priority>"))
        << u"thrown|1/a/0/5/done"_s;
    QTest::newRow("goals of a set, no areas")
        << Read(readGoalsForPrint) << QByteArray("get-complex-goals-for-sets")
        << httpReply(xml("<id>1</id><name>a</name><priority>5</priority><checked>y</checked>"))
        << u"thrown|"_s;
}

void TVXManagerTest::oddAnswersEndQuietly()
{
    QFETCH(Read, read);
    QFETCH(QByteArray, kind);
    QFETCH(ServiceReply, reply);
    Conversation conversation;
    conversation.service.answer(kind, reply);

    QTEST(read(conversation.manager), "records");

    QCOMPARE(conversation.service.requests().size(), 1);
    QCOMPARE(conversation.alert.errors, QStringList());
}

void TVXManagerTest::theErrorWordIsRecognised_data()
{
    QTest::addColumn<QByteArray>("answer");

    QTest::newRow("bare") << QByteArray("Error");
    QTest::newRow("among blanks") << QByteArray(" \tError ");
    QTest::newRow("before a line break") << QByteArray("Error\r\n");
    QTest::newRow("in lower case") << QByteArray("error");
}

void TVXManagerTest::theErrorWordIsRecognised()
{
    QFETCH(QByteArray, answer);
    Conversation conversation;
    for (const char *kind : {"get-sets", "get-areas", "get-goals", "get-complex-goals-for-sets"})
        conversation.service.answer(kind, answer);
    conversation.service.answer("get-random-goal", answer);

    for (const auto &read : {readSets, readAreas, readGoals, readGoalsForPrint})
        QCOMPARE(read(conversation.manager), QString());

    const bool isTheWord = answer.trimmed() == "Error" && !answer.contains('\n');
    QCOMPARE(readRandomGoal(conversation.manager), isTheWord ? u"none"_s : u"nameless 0//0/0/open"_s);
    QCOMPARE(conversation.alert.errors, QStringList());
}

void TVXManagerTest::aMissingAnswerIsShownOnceOrNotAtAll_data()
{
    QTest::addColumn<Read>("act");
    QTest::addColumn<QString>("result");
    QTest::addColumn<bool>("isShown");

    QTest::newRow("sets") << Read(readSets) << u""_s << true;
    QTest::newRow("areas") << Read(readAreas) << u""_s << true;
    QTest::newRow("goals") << Read(readGoals) << u""_s << true;
    QTest::newRow("goals of a set") << Read(readGoalsForPrint) << u""_s << true;
    QTest::newRow("random goal") << Read(readRandomGoal) << u"none"_s << false;
    QTest::newRow("complete form") << Read([](TVXManager &manager) { return manager.sendRequest(u"p1=x"_s); })
                                   << u"Error"_s << false;
    QTest::newRow("sign-in") << Read([](TVXManager &manager) {
        return manager.signInWithLogin(login, password);
    }) << u"Error"_s << false;
    QTest::newRow("sign-up") << Read([](TVXManager &manager) {
        return manager.createNewUser(login, u"a@b.cd"_s, password);
    }) << u"Server Error"_s << true;
}

void TVXManagerTest::aMissingAnswerIsShownOnceOrNotAtAll()
{
    QFETCH(Read, act);
    QFETCH(bool, isShown);
    Conversation conversation(refusingUrl());

    QTEST(act(conversation.manager), "result");

    QCOMPARE(conversation.alert.errors.size(), isShown ? 1 : 0);
    for (const QString &error : conversation.alert.errors)
        QVERIFY2(error.startsWith(u"Could not connect"), qPrintable(error));
}

void TVXManagerTest::signInAnswersTheServicesText_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("text");

    QTest::newRow("ok") << QByteArray("OK") << u"OK"_s;
    QTest::newRow("blanks around") << QByteArray("\t OK \t") << u"OK"_s;
    QTest::newRow("line break behind") << QByteArray("OK\n") << u"OK\n"_s;
    QTest::newRow("refusal") << QByteArray("Unknown login or wrong password.")
                             << u"Unknown login or wrong password."_s;
    QTest::newRow("empty") << QByteArray("") << u""_s;
    QTest::newRow("not ASCII") << QByteArray("OK\xc2\xa0") << u"Error"_s;
}

void TVXManagerTest::signInAnswersTheServicesText()
{
    QFETCH(QByteArray, answer);
    Conversation conversation;
    conversation.service.answer("sign-in", answer);

    QTEST(conversation.manager.signInWithLogin(login, password), "text");

    QCOMPARE(conversation.service.bodies(), {"p1=sign-in" + credentials});
}

void TVXManagerTest::signUpSendsItsValuesAsTyped()
{
    Conversation conversation;
    conversation.service.answer("create-new-user", R"({"result":"OK"})");

    const QString text = conversation.manager.createNewUser(u"Zoë"_s, u"a@b.cd"_s, u"p&q %41?"_s);

    QCOMPARE(text, uR"({"result":"OK"})"_s);
    QCOMPARE(conversation.service.bodies(),
             {QByteArray("p1=create-new-user&p2=a@b.cd&p3=p&q %41?&p4=Zoë&type=json")});
}

void TVXManagerTest::signUpAnswersTheServicesText_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("alerts");

    QTest::newRow("as it came") << QByteArray(" {\"message\":\"schon vergeben: é\"}\n")
                                << u" {\"message\":\"schon vergeben: é\"}\n"_s << 0;
    QTest::newRow("empty") << QByteArray("") << u""_s << 0;
    QTest::newRow("error word") << QByteArray("Error") << u"Error"_s << 0;
    QTest::newRow("unreadable") << QByteArray("\xff") << u"Server Error"_s << 1;
}

void TVXManagerTest::signUpAnswersTheServicesText()
{
    QFETCH(QByteArray, answer);
    QFETCH(int, alerts);
    Conversation conversation;
    conversation.service.answer("create-new-user", answer);

    QTEST(conversation.manager.createNewUser(login, u"a@b.cd"_s, password), "text");

    QCOMPARE(conversation.alert.errors.size(), alerts);
}

void TVXManagerTest::aCompleteFormIsSentAsItIs()
{
    Conversation conversation;
    conversation.service.answer("ping", " pong\r\n ");

    QCOMPARE(conversation.manager.sendRequest(u"p1=ping&p4=a%20b + {_amp_}é"_s), u"pong\r\n"_s);

    QCOMPARE(conversation.service.bodies(), {QByteArray("p1=ping&p4=a%20b + {_amp_}é")});
}

void TVXManagerTest::addressesAreJudgedWhole_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("isValid");

    const auto row = [](const QString &address, bool isValid) {
        QTest::newRow(address.toUtf8().toPercentEncoding().constData()) << address << isValid;
    };
    row(u"a@b.cd"_s, true);
    row(u"A.B+c%d-e_f@SUB.EXAMPLE.INFO"_s, true);
    row(u"a@b..cd"_s, true);
    row(u"a@-.cd"_s, true);
    row(u""_s, false);
    row(u"@b.cd"_s, false);
    row(u"a@b.c"_s, false);
    row(u"a@b.cdefg"_s, false);
    row(u"a@b.c1"_s, false);
    row(u"a@bcd"_s, false);
    row(u"a@.cd"_s, false);
    row(u"a@b@c.de"_s, false);
    row(u"a b@c.de"_s, false);
    row(u" a@b.cd"_s, false);
    row(u"a@b.cd\n"_s, false);
    row(u"a@b.cd\nx"_s, false);
    row(u"é@b.cd"_s, false);
    row(u"a@b.cé"_s, false);
}

void TVXManagerTest::addressesAreJudgedWhole()
{
    QFETCH(QString, address);
    Conversation conversation;
    QTEST(conversation.manager.isItValidEmail(address), "isValid");
}

QTEST_GUILESS_MAIN(TVXManagerTest)
#include "TVXManagerTest.moc"
