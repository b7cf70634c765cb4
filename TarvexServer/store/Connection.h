#pragma once

namespace soci {
class session;
}

namespace tarvex::store {

/// A session inside an open transaction: what the functions of this folder work on. It is handed out by
/// Database and must not be kept beyond the transaction.
using Connection = soci::session;

} // namespace tarvex::store
