#pragma once

#include <stdexcept>

namespace tarvex::store {

/// The database cannot be used at all; what() is one sentence for whoever starts the server.
class CannotOpen : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Work on the database as a whole was refused, or failed and left all as it was; what() is one sentence for
/// whoever asked for it.
class MaintenanceFailed : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// A transaction failed and left nothing behind. what() is the engine's own text and carries no values.
class TransactionFailed : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// There is no room for more; what removes may go on.
class NoRoom : public TransactionFailed
{
public:
    using TransactionFailed::TransactionFailed;
};

/// A transaction could not have the database to itself for long enough; the same may do later.
class TransactionHindered : public TransactionFailed
{
public:
    using TransactionFailed::TransactionFailed;
};

/// A transaction ended before its time through no fault of its own: begun anew at once, it may well succeed.
class TransactionBroken : public TransactionHindered
{
public:
    using TransactionHindered::TransactionHindered;
};

} // namespace tarvex::store
