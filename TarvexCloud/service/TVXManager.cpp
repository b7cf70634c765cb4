#include "TVXManager.h"

#include "AnswerRecords.h"
#include "AnswerText.h"
#include "Escaping.h"
#include "FormString.h"
#include "TVXAlert.h"
#include "TVXExchange.h"
#include "UserAgent.h"

#include <QCoreApplication>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

QString translated(const char *sentence)
{
    return QCoreApplication::translate("TVXManager", sentence);
}

} // namespace

TVXManager::TVXManager(TVXExchange &exchange, TVXAlert &alert) : m_exchange(exchange), m_alert(alert) {}

QString TVXManager::userAgent() const
{
    return clientUserAgent();
}

QString TVXManager::replaceSpecialCharsInString(const QString &userText) const
{
    return escapedForWire(userText);
}

QString TVXManager::replaceSpecialCharsFromString(const QString &wireText) const
{
    return unescapedFromWire(wireText);
}

QString TVXManager::sendRequest(const QString &formString, QString *whyNoAnswer)
{
    return textAnswer(formString.toUtf8(), TVXPurpose::Writing, whyNoAnswer);
}

QString TVXManager::signInWithLogin(const QString &login, const QString &andPassword, QString *whyNoAnswer)
{
    return textAnswer(FormString("sign-in"_L1).credentials(login, andPassword).body(), TVXPurpose::Reading,
                      whyNoAnswer);
}

QString TVXManager::createNewUser(const QString &newUser, const QString &email, const QString &andPassword)
{
    FormString form("create-new-user"_L1);
    form.raw("p2"_L1, email).raw("p3"_L1, andPassword).raw("p4"_L1, newUser).raw("type"_L1, u"json"_s);
    const std::optional<QByteArray> answer = answerOrAlert(
        form, TVXPurpose::Writing, QT_TRANSLATE_NOOP("TVXManager", "The account may not have been created."));
    if (!answer)
        return u"Server Error"_s;
    const std::optional<QString> text = utf8Text(*answer);
    if (!text)
        m_alert.showError(translated(QT_TRANSLATE_NOOP(
            "TVXManager",
            "The service's answer could not be read. Try to sign in with the new account; if that "
            "fails, ask whoever runs the service.")));
    return text.value_or(u"Server Error"_s);
}

bool TVXManager::isItValidEmail(const QString &address) const
{
    static const QRegularExpression form(
        QRegularExpression::anchoredPattern(u"[A-Z0-9a-z._%+-]+@[A-Za-z0-9.-]+\\.[A-Za-z]{2,4}"_s));
    return form.match(address).hasMatch();
}

template<typename List>
bool TVXManager::readList(const FormString &form, bool (*isError)(const QByteArray &),
                          bool (*append)(const QByteArray &, List &), List &records, const char *failure)
{
    records.clear();
    const auto answer = answerOrAlert(form, TVXPurpose::Reading, failure);
    return answer && !isError(*answer) && append(*answer, records);
}

bool TVXManager::getSetsFromServerByUsingLogin(const QString &login, const QString &andPassword,
                                               TVXSetsList &sets)
{
    return readList(FormString("get-sets"_L1).credentials(login, andPassword), isErrorAnswerAmongBlanks,
                    appendSets, sets, QT_TRANSLATE_NOOP("TVXManager", "The sets could not be fetched."));
}

bool TVXManager::getAreasFormServeByUsingLogin(const QString &login, const QString &andPassword,
                                               TVXAreaList &areas)
{
    return readList(FormString("get-areas"_L1).credentials(login, andPassword), isErrorAnswerAmongBlanks,
                    appendAreas, areas, QT_TRANSLATE_NOOP("TVXManager", "The areas could not be fetched."));
}

bool TVXManager::getGoalsFormServeByUsingLogin(const QString &login, const QString &andPassword,
                                               qint64 forArea, qint64 forSets, TVXGoalList &goals)
{
    FormString form("get-goals"_L1);
    form.credentials(login, andPassword).number("p4"_L1, forSets).number("p5"_L1, forArea);
    return readList(form, isErrorAnswerAmongBlanks, appendGoalsOfOneArea, goals,
                    QT_TRANSLATE_NOOP("TVXManager", "The goals could not be fetched."));
}

bool TVXManager::getGoalsForPrintUsingLogin(const QString &login, const QString &andPassword,
                                            qint64 forSetsId, TVXGoalList &goals)
{
    FormString form("get-complex-goals-for-sets"_L1);
    form.credentials(login, andPassword).number("p4"_L1, forSetsId);
    // Blanks around the word "Error" make it text that is not XML: empty too.
    return readList(form, isErrorAnswer, appendGoalsOfAllAreas, goals,
                    QT_TRANSLATE_NOOP("TVXManager", "The goals could not be fetched."));
}

TVXGoalPtr TVXManager::getRandomGoalUsingLogin(const QString &login, const QString &andPassword,
                                               qint64 forSetsId, QString *whyNoAnswer)
{
    FormString form("get-random-goal"_L1);
    form.credentials(login, andPassword).number("p4"_L1, forSetsId);
    const TVXAnswer answer = postInSilence(form.body(), TVXPurpose::Reading, whyNoAnswer);
    const std::optional<QString> text = answer.data ? asciiText(*answer.data) : std::nullopt;
    if (answer.data && !text && whyNoAnswer)
        *whyNoAnswer = translated(QT_TRANSLATE_NOOP("TVXManager", "The service's answer could not be read."));
    if (!text || withoutBlanksAround(*text) == "Error"_L1)
        return {};
    return firstGoal(*answer.data);
}

std::optional<QByteArray> TVXManager::answerOrAlert(const FormString &form, TVXPurpose purpose,
                                                    const char *failure)
{
    const TVXAnswer answer = m_exchange.post(form.body(), purpose);
    if (answer.data)
        return answer.data;
    QStringList sentences = {translated(failure), answer.errorDescription};
    if (purpose == TVXPurpose::Writing && answer.mayHaveArrived)
        sentences +=
            translated(QT_TRANSLATE_NOOP("TVXManager", "Check whether it was done before you try again."));
    m_alert.showError(sentences.join(u' '));
    return std::nullopt;
}

TVXAnswer TVXManager::postInSilence(const QByteArray &body, TVXPurpose purpose, QString *whyNoAnswer)
{
    TVXAnswer answer = m_exchange.post(body, purpose);
    if (whyNoAnswer)
        *whyNoAnswer = answer.data ? QString() : answer.errorDescription;
    return answer;
}

QString TVXManager::textAnswer(const QByteArray &body, TVXPurpose purpose, QString *whyNoAnswer,
                               const QString &otherwise)
{
    const TVXAnswer answer = postInSilence(body, purpose, whyNoAnswer);
    const std::optional<QString> text = answer.data ? asciiText(*answer.data) : std::nullopt;
    return text ? withoutBlanksAround(*text) : otherwise;
}
