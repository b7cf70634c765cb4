#include "TVXManager.h"
#include "CurlExchange.h"
#include "LoopbackService.h"
#include "ServiceFakes.h"

#include <functional>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString login = u"abc"_s;
const QString password;
const QByteArray credentials = "&p2=900150983CD24FB0D6963F7D28E17F72&p3=D41D8CD98F00B204E9800998ECF8427E";

/// A manager with its service at the other end of a real wire.
struct Client
{
    LoopbackService service;
    RecordingWait wait;
    CurlExchange exchange{service.url(), std::chrono::seconds(10), wait};
    RecordingAlert alert;
    TVXManager manager{exchange, alert};
};

/// An operation of the manager, with its outcome as one line.
using Act = std::function<QString(TVXManager &)>;

/// What the list holds when the operation is over, however it ended.
template<typename List, typename Operation, typename Show>
QString readInto(List list, Operation operation, Show show)
{
    QStringList records;
    try {
        operation(list);
    } catch (const std::out_of_range &) {
        records.append(u"thrown"_s);
    }
    for (const auto &record : list)
        records.append(show(*record));
    return records.join(u'|');
}

QString shown(const TVXGoal &goal)
{
    const QString name = goal.nameOfGoal().isNull() ? u"(null)"_s : goal.nameOfGoal();
    return u"%1/%2/%3/%4/%5"_s.arg(goal.idOfGoal())
        .arg(name)
        .arg(goal.idOfArea())
        .arg(goal.priorityOfGoal())
        .arg(goal.isChecked() ? u"done"_s : u"open"_s);
}

QString sets(TVXManager &manager)
{
    return readInto(
        TVXSetsList{std::make_shared<TVXSets>()},
        [&](TVXSetsList &list) { manager.getSetsFromServerByUsingLogin(login, password, list); },
        [](const TVXSets &set) {
            QStringList texts = {QString::number(set.idOfSets()), set.name()};
            for (int area = 0; area < TVXSets::areaCount; ++area)
                texts.append(set.percentOfArea(area));
            return texts.join(u'/');
        });
}

QString areas(TVXManager &manager)
{
    return readInto(
        TVXAreaList{std::make_shared<TVXArea>()},
        [&](TVXAreaList &list) { manager.getAreasFormServeByUsingLogin(login, password, list); },
        [](const TVXArea &area) {
            return u"%1/%2/%3/%4"_s.arg(area.idOfArea())
                .arg(area.name(), area.color())
                .arg(area.valueOfArea());
        });
}

QString goals(TVXManager &manager)
{
    const auto read = [&](TVXGoalList &list) {
        manager.getGoalsFormServeByUsingLogin(login, password, /*forArea=*/3, /*forSets=*/12, list);
    };
    return readInto(TVXGoalList{std::make_shared<TVXGoal>()}, read, shown);
}

QString goalsForPrint(TVXManager &manager)
{
    const auto read = [&](TVXGoalList &list) {
        manager.getGoalsForPrintUsingLogin(login, password, /*forSetsId=*/12, list);
    };
    return readInto(TVXGoalList{std::make_shared<TVXGoal>()}, read, shown);
}

QString randomGoal(TVXManager &manager)
{
    const auto read = [&](TVXGoalList &list) {
        list = {manager.getRandomGoalUsingLogin(login, password, /*forSetsId=*/12)};
        if (!list.front())
            list.clear();
    };
    return readInto(TVXGoalList(), read, shown);
}

QString signIn(TVXManager &manager)
{
    return manager.signInWithLogin(login, password);
}

QString signUp(TVXManager &manager)
{
    return manager.createNewUser(u"Zoë"_s, u"a@b.cd"_s, u"p&q %41?"_s);
}

QString completeForm(TVXManager &manager)
{
    return manager.sendRequest(u"p1=ping&p4=a%20b + {_amp_}é"_s);
}

struct Kind
{
    Act act;
    QByteArray form;
};

const Kind ofSets = {sets, "p1=get-sets" + credentials};
const Kind ofAreas = {areas, "p1=get-areas" + credentials};
const Kind ofGoals = {goals, "p1=get-goals" + credentials + "&p4=12&p5=3"};
const Kind ofGoalsForPrint = {goalsForPrint, "p1=get-complex-goals-for-sets" + credentials + "&p4=12"};
const Kind ofRandomGoal = {randomGoal, "p1=get-random-goal" + credentials + "&p4=12"};
const Kind ofSignIn = {signIn, "p1=sign-in" + credentials};
const Kind ofSignUp = {signUp, "p1=create-new-user&p2=a@b.cd&p3=p&q %41?&p4=Zoë&type=json"};
const Kind ofCompleteForm = {completeForm, "p1=ping&p4=a%20b + {_amp_}é"};

QByteArray xml(const QByteArray &inside)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<answer>" + inside + "</answer>\n";
}

QByteArray percents(int last)
{
    QByteArray elements;
    for (int i = 1; i <= last; ++i)
        elements += QByteArray("<percent%1>%10</percent%1>").replace("%1", QByteArray::number(i));
    return elements;
}

} // namespace

Q_DECLARE_METATYPE(Kind)

class TVXManagerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachRequestSendsOneFormAndEndsLikeThis_data();
    void eachRequestSendsOneFormAndEndsLikeThis();
    void addressesAreJudgedWhole_data();
    void addressesAreJudgedWhole();
};

void TVXManagerTest::eachRequestSendsOneFormAndEndsLikeThis_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("outcome");
    QTest::addColumn<int>("alerts");
    const auto row = [](const char *name, const Kind &kind, const QByteArray &answer, const char *outcome,
                        int alerts = 0) {
        QTest::newRow(name) << kind << answer << QString::fromUtf8(outcome) << alerts;
    };
    const QByteArray none;
    const QByteArray set = "<id>4</id><name>My {_amp_} yours</name>" + percents(8);
    const char *setRead = "4/My & yours/10/20/30/40/50/60/70/80";
    row("sets", ofSets, xml(set), setRead);
    row("sets, percentages as sent", ofSets,
        xml("<id>1</id><name/>" + percents(7) + "<percent8> 07%</percent8>"), "1//10/20/30/40/50/60/70/ 07%");
    row("sets, empty body", ofSets, "", "");
    row("sets, plain text", ofSets, "out of order", "");
    row("sets, the word", ofSets, "Error", "");
    row("sets, the word among blanks", ofSets, " \tError ", "");
    row("sets, cut document", ofSets, xml(set).chopped(5), "");
    row("sets, invalid UTF-8", ofSets, xml(set + "\xe9"), "");
    row("sets, declared Latin-1", ofSets,
        "<?xml version='1.0' encoding='ISO-8859-1'?><s><id>1</id><name>\xe9</name>" + percents(8) + "</s>",
        "1/é/10/20/30/40/50/60/70/80");
    row("sets, no ids", ofSets, xml("<name>a</name>" + percents(8)), "");
    row("sets, no names", ofSets, xml("<id>1</id>" + percents(8)), "thrown");
    row("sets, one percentage short", ofSets, xml(set + "<id>2</id><name>b</name>" + percents(7)),
        "thrown|4/My & yours/10/20/30/40/50/60/70/80");
    row("sets, names in excess", ofSets, xml(set + "<name>b</name>"), setRead);
    row("areas", ofAreas, xml("<id>1</id><name>a</name><color>#{_d_}</color><value>7 of 9</value>"),
        "1/a/#{_d_}/7");
    row("areas, no values", ofAreas, xml("<id>1</id><name>a</name><color/>"), "thrown");
    row("goals", ofGoals,
        xml("<id>99999999999</id><name>5{_d_}2 "
            "km</name><priority>9</priority><checked>y</checked><area>3</area>"
            "<id>x</id><name/><priority>-5</priority><checked>Y</checked>"
            "<id> 3</id><name>{_end_}</name><priority/><checked>1</checked>"),
        "2147483647/5.2 km/0/9/done|0//0/-5/open|3/{_end_}/0/0/open");
    row("goals, one check short", ofGoals,
        xml("<id>1</id><name>a</name><priority>5</priority><checked>y</checked><id>2</id><name/><priority/>"),
        "thrown|1/a/0/5/done");
    row("goals for print", ofGoalsForPrint,
        xml("<goal><id>5</id><name>a</name><area>8</area><priority>0</priority><checked>y</checked></goal>"
            "<goal><id>4</id><name>b</name><area>1</area><priority>5</priority><checked>yes</checked></"
            "goal>"),
        "5/a/8/0/done|4/b/1/5/open");
    row("goals for print, the word among blanks", ofGoalsForPrint, " Error ", "");
    row("random goal", ofRandomGoal,
        xml("<id>5</id><name>caf&#233;{_quest_}</name><area>8</area><priority>9</priority><checked>y</"
            "checked>"),
        "5/café?/8/0/open");
    row("random goal, the word", ofRandomGoal, " Error\t", "");
    row("random goal, line break behind the word", ofRandomGoal, "Error\n", "0/(null)/0/0/open");
    row("random goal, empty body", ofRandomGoal, "", "0/(null)/0/0/open");
    row("random goal, not ASCII", ofRandomGoal, xml("<id>1</id><name>é</name><area>2</area>"), "");
    row("random goal, no area", ofRandomGoal, xml("<id>1</id><name>a</name>"), "thrown");
    row("sign-in", ofSignIn, "\t OK ", "OK");
    row("sign-in, line break behind", ofSignIn, "OK\n", "OK\n");
    row("sign-in, refused", ofSignIn, "Wrong password.", "Wrong password.");
    row("sign-in, not ASCII", ofSignIn, "OK\xc2\xa0", "Error");
    row("sign-up", ofSignUp, " {\"message\":\"schon vergeben: é\"}\n",
        " {\"message\":\"schon vergeben: é\"}\n");
    row("sign-up, unreadable", ofSignUp, "\xff", "Server Error", 1);
    row("complete form", ofCompleteForm, " pong\r\n ", "pong\r\n");
    row("sets, no answer", ofSets, none, "", 1);
    row("areas, no answer", ofAreas, none, "", 1);
    row("goals, no answer", ofGoals, none, "", 1);
    row("goals for print, no answer", ofGoalsForPrint, none, "", 1);
    row("random goal, no answer", ofRandomGoal, none, "");
    row("sign-in, no answer", ofSignIn, none, "Error");
    row("sign-up, no answer", ofSignUp, none, "Server Error", 1);
    row("complete form, no answer", ofCompleteForm, none, "Error");
}

void TVXManagerTest::eachRequestSendsOneFormAndEndsLikeThis()
{
    QFETCH(Kind, kind);
    QFETCH(QByteArray, answer);
    QFETCH(int, alerts);
    Client client;
    client.service.answer(kind.form.split('&').first().sliced(3),
                          answer.isNull() ? ServiceReply{{}, /*closes=*/true} : httpReply(answer));

    QTEST(kind.act(client.manager), "outcome");

    QCOMPARE(client.service.bodies(), {kind.form});
    QCOMPARE(client.alert.errors.size(), alerts);
}

void TVXManagerTest::addressesAreJudgedWhole_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("isValid");
    const QStringList valid = {u"a@b.cd"_s, u"A.B+c%d-e_f@SUB.EXAMPLE.INFO"_s, u"a@b..cd"_s};
    const QStringList invalid = {u""_s,         u"@b.cd"_s,     u"a@b.c"_s,    u"a@b.cdefg"_s, u"a@b.c1"_s,
                                 u"a@bcd"_s,    u"a@.cd"_s,     u"a@b@c.de"_s, u"a b@c.de"_s,  u" a@b.cd"_s,
                                 u"a@b.cd\n"_s, u"a@b.cd\nx"_s, u"é@b.cd"_s,   u"a@b.cé"_s};
    for (const QString &address : valid + invalid)
        QTest::newRow(address.toUtf8().toPercentEncoding().constData()) << address << valid.contains(address);
}

void TVXManagerTest::addressesAreJudgedWhole()
{
    QFETCH(QString, address);
    QTEST(Client().manager.isItValidEmail(address), "isValid");
}

QTEST_GUILESS_MAIN(TVXManagerTest)
#include "TVXManagerTest.moc"
