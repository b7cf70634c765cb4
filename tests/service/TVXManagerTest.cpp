#include "TVXManager.h"
#include "CurlExchange.h"
#include "LoopbackService.h"
#include "Samples.h"
#include "ServiceFakes.h"

#include <array>
#include <map>

using namespace Qt::StringLiterals;

namespace {

const QString login = u"abc"_s;
const QString password;

/// One call of the manager, with room for its reason; what came of it as a line of text.
using Call = std::function<QString(TVXManager &, QString &)>;

QString shown(const TVXSetsPtr &set)
{
    QStringList texts = {QString::number(set->idOfSets()), set->name()};
    for (int area = 0; area < TVXSets::areaCount; ++area)
        texts.append(set->percentOfArea(area));
    return texts.join(u'/');
}

QString shown(const TVXAreaPtr &area)
{
    return u"%1/%2/%3/%4"_s.arg(area->idOfArea()).arg(area->name(), area->color()).arg(area->valueOfArea());
}

QString shown(const TVXGoalPtr &goal)
{
    if (!goal)
        return u"none"_s;
    const QString name = goal->nameOfGoal().isNull() ? u"(null)"_s : goal->nameOfGoal();
    const QString numbers =
        u"%1/%2/%3"_s.arg(goal->idOfGoal()).arg(goal->idOfArea()).arg(goal->priorityOfGoal());
    return numbers + (goal->isChecked() ? u"/done/"_s : u"/open/"_s) + name;
}

/// By TVXWritten.
const std::array names = {u"done"_s, u"refused"_s, u"unknown"_s};

template<typename Operation, typename... Arguments>
Call call(Operation operation, Arguments... arguments)
{
    return [=](TVXManager &manager, QString &why) {
        if constexpr (std::is_invocable_v<Operation, TVXManager &, QString, QString, Arguments..., QString *>)
            return std::invoke(operation, manager, login, password, arguments..., &why);
        else
            return names.at(
                static_cast<std::size_t>(std::invoke(operation, manager, login, password, arguments...)));
    };
}

/// Of an operation that empties and fills a list: its records, however the operation ended.
template<typename Record, typename Operation, typename... Ids>
Call read(Operation operation, Ids... ids)
{
    return [=](TVXManager &manager, QString &) {
        std::vector<std::shared_ptr<Record>> list = {std::make_shared<Record>()};
        QStringList records;
        try {
            if (!std::invoke(operation, manager, login, password, ids..., list))
                records.append(u"no list"_s);
        } catch (const std::out_of_range &) {
            records.append(u"thrown"_s);
        }
        for (const auto &record : list)
            records.append(shown(record));
        return records.join(u"; "_s);
    };
}

TVXGoalPtr goal(const QString &name, qint32 priority, bool checked)
{
    auto goal = std::make_shared<TVXGoal>();
    goal->setNameOfGoal(name);
    goal->setPriorityOfGoal(priority);
    goal->setIsChecked(checked);
    return goal;
}

TVXAreaPtr area(qint64 id, const QString &name)
{
    auto area = std::make_shared<TVXArea>();
    area->setIdOfArea(id);
    area->setName(name);
    return area;
}

/// By the kind of the request that each sends.
const std::map<QByteArray, Call> calls = {
    {"get-sets", read<TVXSets>(&TVXManager::getSetsFromServerByUsingLogin)},
    {"get-areas", read<TVXArea>(&TVXManager::getAreasFormServeByUsingLogin)},
    {"get-goals", read<TVXGoal>(&TVXManager::getGoalsFormServeByUsingLogin, /*forArea=*/3, /*forSets=*/12)},
    {"get-complex-goals-for-sets", read<TVXGoal>(&TVXManager::getGoalsForPrintUsingLogin, /*forSetsId=*/12)},
    {"get-random-goal",
     [](TVXManager &manager, QString &why) {
         try {
             return shown(manager.getRandomGoalUsingLogin(login, password, /*forSetsId=*/12, &why));
         } catch (const std::out_of_range &) {
             return u"thrown"_s;
         }
     }},
    {"delete-sets", call(&TVXManager::deleteSestUsingLogin, /*forSetsId=*/4294967301)},
    {"delete-goal", call(&TVXManager::deleteGoalByIdUsingLogin, /*forGoalWithId=*/8)},
    {"delete-some-goals", call(&TVXManager::deleteGoalsByIdUsingLogin, std::vector<qint64>{12, 15})},
    {"create-sets", call(&TVXManager::createSestUsingLogin, u"é & more"_s)},
    {"create-some-goals", call(&TVXManager::createGoalsUsingLogin,
                               TVXGoalList{goal(u"Run 5km"_s, /*priority=*/2, /*checked=*/true),
                                           goal(u"a;b:c{_end_}"_s, /*priority=*/-1, /*checked=*/false)},
                               /*forSetsId=*/7, /*forAreaId=*/3)},
    {"create-goal", call(&TVXManager::createGoalUsingLogin, u"1/2"_s, /*andPriority=*/9, /*andChecked=*/false,
                         /*forSetsId=*/7, /*forAreaId=*/3)},
    {"set-sets-name", call(&TVXManager::renameSestUsingLogin, u"50%"_s, /*forSetsWithId=*/7)},
    {"set-area-names", call(&TVXManager::renameAreasUsingLogin,
                            TVXAreaList{area(/*id=*/1, u"Health"_s), area(/*id=*/2, u"Love & Family"_s)})},
    {"set-area-value", call(&TVXManager::setAreaValueOnServerByUsingLogin, /*forArea=*/3, /*newValue=*/-7)},
    {"set-checked-area-percent", call(&TVXManager::setCheckedUsingLogin, /*goal=*/5)},
    {"sign-in", call(&TVXManager::signInWithLogin)},
    {"create-new-user",
     [](TVXManager &manager, QString &) {
         return manager.createNewUser(u"Zoë"_s, u"a@b.cd"_s, u"p&q %41?"_s);
     }},
    {"ping", // any complete form; half a character cannot be sent
     [](TVXManager &manager, QString &why) {
         return manager.sendRequest(u"p1=ping&p4=a%20b + {_amp_}é"_s + QChar(0xd83d), &why);
     }},
};

/// A manager with its service at the other end of a real wire.
struct Client
{
    QByteArray outcome(const QByteArray &kind, const ServiceReply &reply)
    {
        service.answer(kind, reply);
        QString why;
        QString text = calls.at(kind)(manager, why);
        for (const QString &error : alert.errors)
            text += u"! "_s + error;
        if (!why.isNull())
            text += u"? "_s + why;
        return text.toUtf8().replace(service.url().split('/').at(2), "HOST");
    }

    LoopbackService service{};
    RecordingWait wait{};
    QByteArray url = service.url();
    CurlExchange exchange{url, std::chrono::seconds(10), wait};
    RecordingAlert alert{};
    TVXManager manager{exchange, alert};
};

} // namespace

class TVXManagerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachRequestIsOneForm_data() { addSampleRows("forms.txt"); }
    void eachRequestIsOneForm()
    {
        const auto [form, copies, outcome] = sampleRow<3>();
        Client client;
        QVERIFY(client.exchange.post({}).data); // leaves a connection, which dies with the next request
        QCOMPARE(client.outcome(QTest::currentDataTag(), {{}, /*closes=*/true}), outcome);
        QCOMPARE(client.service.bodies(), QList<QByteArray>{""} << QList<QByteArray>(copies.toInt(), form));
    }

    void whatNeverLeftNeedNotBeLookedFor()
    {
        Client client{.url = refusingUrl()};
        client.outcome("create-goal", {});
        const QStringList &told = client.alert.errors;
        QVERIFY2(told.size() == 1 && !told[0].contains(u"Check whether"_s), qPrintable(told.join(u'\n')));
    }

    void eachAnswerHasItsOutcome_data() { addSampleRows("answers.txt"); }
    void eachAnswerHasItsOutcome()
    {
        const auto [kind, answer, outcome] = sampleRow<3>();
        Client client;
        QCOMPARE(client.outcome(kind, httpReply(answer)), outcome);
        QCOMPARE(client.service.bodies().size(), 1);
    }

    void addressesAreJudgedWhole_data() { addSampleRows("addresses.txt"); }
    void addressesAreJudgedWhole()
    {
        const auto [address, verdict] = sampleRow<2>();
        const bool isValid = Client().manager.isItValidEmail(QString::fromUtf8(address));
        QCOMPARE(QByteArray(isValid ? "valid" : "invalid"), verdict);
    }
};

QTEST_GUILESS_MAIN(TVXManagerTest)
#include "TVXManagerTest.moc"
