#include "Condition.h"

#include "StoreError.h"

#include <memory>

namespace tarvex::watch {

namespace {

using std::chrono::steady_clock;

constexpr std::chrono::seconds betweenLooks{3};
constexpr std::chrono::seconds lookTime{2};
constexpr std::chrono::seconds longestRound{5};

std::string sentenceOf(const std::exception_ptr &failure)
{
    try {
        std::rethrow_exception(failure);
    } catch (const store::NoRoom &error) {
        return "Nothing can be added: " + std::string(error.what()) + ".";
    } catch (const std::exception &error) {
        return "The database cannot be written to: " + std::string(error.what()) + ".";
    }
}

} // namespace

std::string Condition::lifeFault() const
{
    const bool isAlive = m_isDraining || steady_clock::now() - m_lastRound.load() < longestRound;
    return isAlive ? "" : "The network thread has stopped making its rounds.";
}

std::string Condition::fault()
{
    if (m_isDraining)
        return "The service is about to end and takes no more connections.";
    if (std::string deadly = lifeFault(); !deadly.empty())
        return deadly;
    look();
    return m_found.fault;
}

void Condition::look()
{
    if (!m_pending.valid()) {
        if (m_begin != Time() && steady_clock::now() < m_begin + betweenLooks)
            return;
        beginLook();
    }
    if (m_pending.wait_until(m_begin + lookTime) == std::future_status::ready)
        m_found = m_pending.get();
    else
        m_found = {.fault = "The database takes longer than two seconds for a small write.", .figures = {}};
}

void Condition::beginLook()
{
    struct Look
    {
        std::promise<Findings> findings;
        store::Figures figures;
    };
    const auto look = std::make_shared<Look>(); // which may outlive this object
    m_begin = steady_clock::now();
    m_pending = look->findings.get_future();
    m_database.write(
        [look, &database = m_database](store::Connection &connection) {
            look->figures = store::probe(connection);
            database.requireRoom(connection);
        },
        [look](const std::exception_ptr &failure) {
            if (failure)
                look->findings.set_value({.fault = sentenceOf(failure), .figures = {}});
            else
                look->findings.set_value({.fault = "", .figures = look->figures});
        });
}

} // namespace tarvex::watch
