#pragma once

#include <stdexcept>

namespace tarvex::store {

/// The database cannot be used at all; what() is one sentence for whoever starts the server.
class CannotOpen : public std::runtime_error
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

/// A transaction could not have the database to itself for long enough; the same may do later.
class TransactionHindered : public TransactionFailed
{
public:
    using TransactionFailed::TransactionFailed;
};

} // namespace tarvex::store
