#pragma once

#include "AccountExport.h"
#include "Administration.h"

#include <cstdint>

namespace tarvex::requests {

/// All that is in an account, with what was deleted and not yet purged if that is asked for. Throws
/// AccountProblem if there is no such account.
wire::AccountExport exportAccount(store::Database &database, std::int64_t accountId, bool withDeleted);

/// Names the areas of an account and sets their values as the export has them, and adds its sets with their
/// goals to those that are there: all of it or nothing. `now` is in seconds
/// since 1970. Throws AccountProblem, with the place in the export
/// where that is at fault.
void importAccount(store::Database &database, std::int64_t accountId, const wire::AccountExport &imported,
                   std::int64_t now);

/// Makes an account that holds what the export does and, if that has none, one set. Returns its id. Throws
/// like createAccount() and the above, and leaves nothing behind then.
std::int64_t createImported(store::Database &database, const security::KeyedHash &hash,
                            const AccountTexts &texts, std::int64_t now, const wire::AccountExport &imported);

} // namespace tarvex::requests
