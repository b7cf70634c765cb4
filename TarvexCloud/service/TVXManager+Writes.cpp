#include "AnswerText.h"
#include "FormString.h"
#include "RecordLists.h"
#include "TVXExchange.h"
#include "TVXManager.h"

using namespace Qt::StringLiterals;

TVXWritten TVXManager::write(const FormString &form, const char *failure)
{
    const auto answer = answerOrAlert(form, TVXPurpose::Writing, failure);
    if (!answer)
        return TVXWritten::Unknown;
    return isErrorAnswerAmongBlanks(*answer) ? TVXWritten::Refused : TVXWritten::Done;
}

TVXWritten TVXManager::deleteSestUsingLogin(const QString &login, const QString &andPassword,
                                            qint64 forSetsId)
{
    return write(FormString("delete-sets"_L1).credentials(login, andPassword).number("p4"_L1, forSetsId),
                 QT_TRANSLATE_NOOP("TVXManager", "The set may not have been deleted."));
}

TVXWritten TVXManager::deleteGoalByIdUsingLogin(const QString &login, const QString &andPassword,
                                                qint64 forGoalWithId)
{
    return write(FormString("delete-goal"_L1).credentials(login, andPassword).number("p4"_L1, forGoalWithId),
                 QT_TRANSLATE_NOOP("TVXManager", "The goal may not have been deleted."));
}

TVXWritten TVXManager::deleteGoalsByIdUsingLogin(const QString &login, const QString &andPassword,
                                                 const std::vector<qint64> &forGoalsWithId)
{
    return write(FormString("delete-some-goals"_L1)
                     .credentials(login, andPassword)
                     .raw("p4"_L1, idRecords(forGoalsWithId)),
                 QT_TRANSLATE_NOOP("TVXManager", "The former goals may not have been deleted."));
}

TVXWritten TVXManager::createSestUsingLogin(const QString &login, const QString &andPassword,
                                            const QString &withName)
{
    return write(FormString("create-sets"_L1).credentials(login, andPassword).text("p4"_L1, withName),
                 QT_TRANSLATE_NOOP("TVXManager", "The new set may not have been created."));
}

TVXWritten TVXManager::createGoalsUsingLogin(const QString &login, const QString &andPassword,
                                             const TVXGoalList &theGoals, qint64 forSetsId, qint64 forAreaId)
{
    FormString form("create-some-goals"_L1);
    appendGoalRecords(form.credentials(login, andPassword).open("p4"_L1), theGoals, forSetsId, forAreaId);
    return write(form, QT_TRANSLATE_NOOP("TVXManager", "The goals may not have been stored."));
}

TVXWritten TVXManager::createGoalUsingLogin(const QString &login, const QString &andPassword,
                                            const QString &withName, qint32 andPriority, bool andChecked,
                                            qint64 forSetsId, qint64 forAreaId)
{
    return write(FormString("create-goal"_L1)
                     .credentials(login, andPassword)
                     .text("p4"_L1, withName)
                     .number("p5"_L1, andPriority)
                     .number("p6"_L1, andChecked ? 1 : 0)
                     .number("p7"_L1, forSetsId)
                     .number("p8"_L1, forAreaId),
                 QT_TRANSLATE_NOOP("TVXManager", "The goal may not have been stored."));
}

TVXWritten TVXManager::renameSestUsingLogin(const QString &login, const QString &andPassword,
                                            const QString &withName, qint64 forSetsWithId)
{
    return write(FormString("set-sets-name"_L1)
                     .credentials(login, andPassword)
                     .text("p4"_L1, withName)
                     .number("p5"_L1, forSetsWithId),
                 QT_TRANSLATE_NOOP("TVXManager", "The set's new name may not have been stored."));
}

TVXWritten TVXManager::renameAreasUsingLogin(const QString &login, const QString &andPassword,
                                             const TVXAreaList &areas)
{
    return write(
        FormString("set-area-names"_L1).credentials(login, andPassword).raw("p4"_L1, areaNameRecords(areas)),
        QT_TRANSLATE_NOOP("TVXManager", "The areas' names may not have been stored."));
}

TVXWritten TVXManager::setAreaValueOnServerByUsingLogin(const QString &login, const QString &andPassword,
                                                        qint64 forArea, qint32 newValue)
{
    return write(FormString("set-area-value"_L1)
                     .credentials(login, andPassword)
                     .number("p4"_L1, forArea)
                     .number("p5"_L1, newValue),
                 QT_TRANSLATE_NOOP("TVXManager", "The area's value may not have been stored."));
}

QString TVXManager::setCheckedUsingLogin(const QString &login, const QString &andPassword, qint64 goal,
                                         QString *whyNoAnswer)
{
    FormString form("set-checked-area-percent"_L1);
    form.credentials(login, andPassword).number("p5"_L1, goal); // there is no p4, and none is expected
    return textAnswer(form.body(), TVXPurpose::Writing, whyNoAnswer, /*otherwise=*/u""_s);
}
