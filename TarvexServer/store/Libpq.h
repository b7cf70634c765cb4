#pragma once

#include <libpq-fe.h>

// PostgreSQL's client library is loaded when it is needed and not linked: it brings a dozen others along
// (TLS, Kerberos, LDAP), which a service on SQLite would hold for nothing. The functions of it that are used
// here stand in our namespace under their own names, and need loadLibpq() first.

// clang-format off
#define TARVEX_LIBPQ_FUNCTIONS(each) \
    each(PQclear) each(PQcmdStatus) each(PQcmdTuples) each(PQconnectdbParams) each(PQconninfoFree) \
    each(PQconninfoParse) each(PQconsumeInput) each(PQenterPipelineMode) each(PQerrorMessage) each(PQexec) \
    each(PQexitPipelineMode) each(PQfinish) each(PQflush) each(PQfreemem) each(PQgetlength) each(PQgetResult) \
    each(PQgetvalue) each(PQisBusy) each(PQntuples) each(PQpipelineSync) each(PQresultErrorField) \
    each(PQresultStatus) each(PQsendPrepare) each(PQsendQueryParams) each(PQsendQueryPrepared) \
    each(PQsetnonblocking) each(PQsocket) each(PQstatus)
// clang-format on

namespace tarvex::store {

// NOLINTNEXTLINE(bugprone-macro-parentheses): it is a name
#define TARVEX_DECLARE(function) extern decltype(&::function) function;
TARVEX_LIBPQ_FUNCTIONS(TARVEX_DECLARE)
#undef TARVEX_DECLARE

/// Makes the functions usable for as long as the process lives. Throws CannotOpen where the library is not
/// installed. From any thread.
void loadLibpq();

} // namespace tarvex::store
