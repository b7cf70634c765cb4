#include "AnswerText.h"
#include "FormString.h"
#include "RecordLists.h"
#include "TVXExchange.h"
#include "TVXManager.h"

using namespace Qt::StringLiterals;

void TVXManager::write(const FormString &form)
{
    // What the service says to a write is not looked at: the caller reads again what it wants to know.
    (void)answerOrAlert(form);
}

void TVXManager::deleteSestUsingLogin(const QString &login, const QString &andPassword, qint64 forSetsId)
{
    write(FormString("delete-sets"_L1).credentials(login, andPassword).number("p4"_L1, forSetsId));
}

void TVXManager::deleteGoalByIdUsingLogin(const QString &login, const QString &andPassword,
                                          qint64 forGoalWithId)
{
    write(FormString("delete-goal"_L1).credentials(login, andPassword).number("p4"_L1, forGoalWithId));
}

void TVXManager::deleteGoalsByIdUsingLogin(const QString &login, const QString &andPassword,
                                           const std::vector<qint64> &forGoalsWithId)
{
    write(FormString("delete-some-goals"_L1)
              .credentials(login, andPassword)
              .raw("p4"_L1, idRecords(forGoalsWithId)));
}

void TVXManager::createSestUsingLogin(const QString &login, const QString &andPassword,
                                      const QString &withName)
{
    write(FormString("create-sets"_L1).credentials(login, andPassword).text("p4"_L1, withName));
}

void TVXManager::createGoalsUsingLogin(const QString &login, const QString &andPassword,
                                       const TVXGoalList &theGoals, qint64 forSetsId, qint64 forAreaId)
{
    FormString form("create-some-goals"_L1);
    appendGoalRecords(form.credentials(login, andPassword).open("p4"_L1), theGoals, forSetsId, forAreaId);
    write(form);
}

void TVXManager::createGoalUsingLogin(const QString &login, const QString &andPassword,
                                      const QString &withName, qint32 andPriority, bool andChecked,
                                      qint64 forSetsId, qint64 forAreaId)
{
    write(FormString("create-goal"_L1)
              .credentials(login, andPassword)
              .text("p4"_L1, withName)
              .number("p5"_L1, andPriority)
              .number("p6"_L1, andChecked ? 1 : 0)
              .number("p7"_L1, forSetsId)
              .number("p8"_L1, forAreaId));
}

void TVXManager::renameSestUsingLogin(const QString &login, const QString &andPassword,
                                      const QString &withName, qint64 forSetsWithId)
{
    write(FormString("set-sets-name"_L1)
              .credentials(login, andPassword)
              .text("p4"_L1, withName)
              .number("p5"_L1, forSetsWithId));
}

void TVXManager::renameAreasUsingLogin(const QString &login, const QString &andPassword,
                                       const TVXAreaList &areas)
{
    write(
        FormString("set-area-names"_L1).credentials(login, andPassword).raw("p4"_L1, areaNameRecords(areas)));
}

void TVXManager::setAreaValueOnServerByUsingLogin(const QString &login, const QString &andPassword,
                                                  qint64 forArea, qint32 newValue)
{
    write(FormString("set-area-value"_L1)
              .credentials(login, andPassword)
              .number("p4"_L1, forArea)
              .number("p5"_L1, newValue));
}

QString TVXManager::setCheckedUsingLogin(const QString &login, const QString &andPassword, qint64 goal)
{
    FormString form("set-checked-area-percent"_L1);
    form.credentials(login, andPassword).number("p5"_L1, goal); // there is no p4, and none is expected
    const TVXAnswer answer = m_exchange.post(form.body());
    const std::optional<QString> text = answer.data ? asciiText(*answer.data) : std::nullopt;
    return text ? withoutBlanksAround(*text) : u""_s;
}
