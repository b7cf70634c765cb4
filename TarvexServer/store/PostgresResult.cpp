#include "PostgresResult.h"

#include "StoreError.h"

#include <charconv>

namespace tarvex::store {

namespace {

/// Whether a failure lies in the circumstances rather than in the statement: the session, a deadlock,
/// transactions that met, a server that stops or has no room for another session.
bool isPassing(std::string_view state)
{
    return state.empty() || state.starts_with("08") || state.starts_with("40") || state.starts_with("57P") ||
           state == "53300" || state == demoted;
}

} // namespace

std::string stateOf(const PGresult *result)
{
    const char *const state = PQresultErrorField(result, PG_DIAG_SQLSTATE);
    return state != nullptr ? state : "";
}

void failWith(const std::string &state)
{
    const std::string text = "the database answered with error " + (state.empty() ? "08000" : state);
    if (isPassing(state))
        throw TransactionBroken(text);
    if (state == "55P03" ||
        state == "57014") // a lock that was not had in time, a statement that took too long
        throw TransactionHindered(text);
    throw TransactionFailed(text);
}

bool isError(const PGresult *result)
{
    const ExecStatusType status = PQresultStatus(result);
    return status == PGRES_FATAL_ERROR || status == PGRES_BAD_RESPONSE;
}

std::int64_t numberIn(const PGresult *result, int row, int column)
{
    const char *const text = PQgetvalue(result, row, column);
    std::int64_t number = 0;
    std::from_chars(text, text + PQgetlength(result, row, column), number);
    return number;
}

} // namespace tarvex::store
