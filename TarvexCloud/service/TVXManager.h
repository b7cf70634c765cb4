#pragma once

#include "TVXArea.h"
#include "TVXGoal.h"
#include "TVXSets.h"

#include <optional>
#include <QByteArray>
#include <QString>
#include <vector>

class FormString;
class TVXAlert;
class TVXExchange;
enum class TVXPurpose;
struct TVXAnswer;

/// What is known of a change once its request has ended, the best first.
enum class TVXWritten {
    Done,
    Refused, ///< the service said "Error"
    Unknown  ///< no answer came: nobody knows whether it is stored
};

/// The client of the goal service: each operation is one request, and the caller waits for its answer.
///
/// It keeps nothing between calls; make one per action. Logins and passwords are given plain, and travel as
/// digests (createNewUser excepted). Ids travel as their low 32 bits. Where no answer came, most operations
/// show an alert that says what is missing or may not have been stored, and why; those that do not say why in
/// `whyNoAnswer`, if given, which is null after an answer.
class TVXManager
{
public:
    /// Both must outlive the manager.
    TVXManager(TVXExchange &exchange, TVXAlert &alert);

    /// How the client names itself to the service.
    QString userAgent() const;

    /// User text in its wire form: nineteen punctuation characters become brace tokens.
    QString replaceSpecialCharsInString(const QString &userText) const;
    /// Wire text as the user typed it. Text that looked like a token before escaping does not come back.
    QString replaceSpecialCharsFromString(const QString &wireText) const;

    /// Sends a complete form string as it is. The answer without blanks at its ends (line breaks stay), or
    /// "Error" if there was none or it was not ASCII. Shows no alert.
    QString sendRequest(const QString &formString, QString *whyNoAnswer = nullptr);

    /// "OK" when the service knows the pair; any other text is a refusal.
    QString signInWithLogin(const QString &login, const QString &andPassword, QString *whyNoAnswer = nullptr);
    /// The service's JSON text as it came, or "Server Error" after an alert. The three values are sent
    /// exactly as typed: an ampersand in one ends its field for whoever reads the form.
    QString createNewUser(const QString &newUser, const QString &email, const QString &andPassword);
    /// Whether the whole text has the form of an address that sign-up accepts. Nothing is sent.
    bool isItValidEmail(const QString &address) const;

    /// @name Reading lists
    /// Each empties the list, asks, and appends one record per "id" element of the answer, in its order.
    /// No answer: an alert, and the list stays empty. "Error" or no XML: empty, in silence. Each returns
    /// whether the answer was a list.
    /// @throws std::out_of_range when the answer has fewer elements of another kind than ids; the records
    ///         made up to that point stand in the list.
    /// @{
    bool getSetsFromServerByUsingLogin(const QString &login, const QString &andPassword, TVXSetsList &sets);
    bool getAreasFormServeByUsingLogin(const QString &login, const QString &andPassword, TVXAreaList &areas);
    /// The goals do not carry their area's id.
    bool getGoalsFormServeByUsingLogin(const QString &login, const QString &andPassword, qint64 forArea,
                                       qint64 forSets, TVXGoalList &goals);
    /// The goals of every area of the set, each with its area's id.
    bool getGoalsForPrintUsingLogin(const QString &login, const QString &andPassword, qint64 forSetsId,
                                    TVXGoalList &goals);
    /// @}

    /// A goal of the set that the service picks, with name and ids only; empty for no answer or "Error",
    /// both in silence. An answer that is not ASCII counts as none, and `whyNoAnswer` says so. One that is
    /// not XML gives a goal with a null name and ids 0.
    /// @throws std::out_of_range when the answer is XML but lacks an id, a name or an area.
    TVXGoalPtr getRandomGoalUsingLogin(const QString &login, const QString &andPassword, qint64 forSetsId,
                                       QString *whyNoAnswer = nullptr);

    /// @name Writing
    /// No answer: an alert. Whatever the service answers shows nothing and changes nothing; each returns what
    /// is known of it.
    /// @{
    TVXWritten deleteSestUsingLogin(const QString &login, const QString &andPassword, qint64 forSetsId);
    TVXWritten deleteGoalByIdUsingLogin(const QString &login, const QString &andPassword,
                                        qint64 forGoalWithId);
    /// The ids go out in full decimal.
    TVXWritten deleteGoalsByIdUsingLogin(const QString &login, const QString &andPassword,
                                         const std::vector<qint64> &forGoalsWithId);
    TVXWritten createSestUsingLogin(const QString &login, const QString &andPassword,
                                    const QString &withName);
    /// Every goal of the list is created anew in that set and area, with an id of the service's; the records'
    /// own ids are not sent.
    TVXWritten createGoalsUsingLogin(const QString &login, const QString &andPassword,
                                     const TVXGoalList &theGoals, qint64 forSetsId, qint64 forAreaId);
    TVXWritten createGoalUsingLogin(const QString &login, const QString &andPassword, const QString &withName,
                                    qint32 andPriority, bool andChecked, qint64 forSetsId, qint64 forAreaId);
    TVXWritten renameSestUsingLogin(const QString &login, const QString &andPassword, const QString &withName,
                                    qint64 forSetsWithId);
    TVXWritten renameAreasUsingLogin(const QString &login, const QString &andPassword,
                                     const TVXAreaList &areas);
    TVXWritten setAreaValueOnServerByUsingLogin(const QString &login, const QString &andPassword,
                                                qint64 forArea, qint32 newValue);
    /// @}
    /// Marks the goal with that id done. The new percentage of its area in its set as the service words it;
    /// empty, without an alert, when there was no answer or it was not ASCII.
    QString setCheckedUsingLogin(const QString &login, const QString &andPassword, qint64 goal,
                                 QString *whyNoAnswer = nullptr);

private:
    // In each, `failure` is what an alert begins with, for translation.
    TVXWritten write(const FormString &form, const char *failure);
    std::optional<QByteArray> answerOrAlert(const FormString &form, TVXPurpose purpose, const char *failure);
    TVXAnswer postInSilence(const QByteArray &body, TVXPurpose purpose, QString *whyNoAnswer);
    QString textAnswer(const QByteArray &body, TVXPurpose purpose, QString *whyNoAnswer,
                       const QString &otherwise = QStringLiteral("Error"));
    template<typename List>
    bool readList(const FormString &form, bool (*isError)(const QByteArray &),
                  bool (*append)(const QByteArray &, List &), List &records, const char *failure);

    TVXExchange &m_exchange;
    TVXAlert &m_alert;
};
