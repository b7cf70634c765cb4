#pragma once

#include <soci/soci.h>

namespace tarvex::store {

/// Runs a prepared statement and tells whether it changed a row.
inline bool changesRow(soci::statement &statement)
{
    statement.execute(true);
    return statement.get_affected_rows() > 0;
}

} // namespace tarvex::store
