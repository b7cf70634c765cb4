#pragma once

#include "Libpq.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarvex::store {

/// What a server says that writes no more.
constexpr std::string_view demoted = "25006";

bool isError(const PGresult *result);
/// The engine's five letters for it (SQLSTATE); empty for a lost session.
std::string stateOf(const PGresult *result);
/// Throws what such a failure is, see PostgresConnection.
[[noreturn]] void failWith(const std::string &state);
std::int64_t numberIn(const PGresult *result, int row, int column);

} // namespace tarvex::store
