#pragma once

#include "Connection.h"

#include <cstdint>

namespace tarvex::store {

/// How much there is in a database.
struct Figures
{
    std::int64_t accounts = 0;
    std::int64_t bytes = 0; ///< as Connection::size() counts them
};

/// Writes a little and takes it back, so that committing shows whether the database can be written to.
Figures probe(Connection &connection);

} // namespace tarvex::store
