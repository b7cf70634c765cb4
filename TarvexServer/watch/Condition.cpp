#include "Condition.h"

#include "StoreError.h"

#include <memory>

namespace tarvex::watch {

namespace {

using std::chrono::steady_clock;

constexpr std::chrono::seconds betweenLooks{3};
constexpr std::chrono::seconds lookTime{2};
constexpr std::chrono::seconds longestRound{5};

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
    return m_fault;
}

void Condition::look()
{
    if (!m_pending.valid()) {
        if (m_begin != Time() && steady_clock::now() < m_begin + betweenLooks)
            return;
        beginLook();
    }
    m_figures.reset();
    m_fault = "The database takes longer than two seconds for a small write.";
    if (m_pending.wait_until(m_begin + lookTime) != std::future_status::ready)
        return;
    try {
        m_figures = m_pending.get();
        m_fault.clear();
    } catch (const store::NoRoom &error) {
        m_fault = "Nothing can be added: " + std::string(error.what()) + ".";
    } catch (const std::exception &error) {
        m_fault = "The database cannot be written to: " + std::string(error.what()) + ".";
    }
}

void Condition::beginLook()
{
    struct Look
    {
        std::promise<store::Figures> found;
        store::Figures figures;
    };
    const auto look = std::make_shared<Look>(); // which may outlive this object
    m_begin = steady_clock::now();
    m_pending = look->found.get_future();
    m_database.write(
        [look, &database = m_database](store::Connection &connection) {
            look->figures = store::probe(connection);
            database.requireRoom(connection);
        },
        [look](const std::exception_ptr &failure) {
            failure ? look->found.set_exception(failure) : look->found.set_value(look->figures);
        });
}

} // namespace tarvex::watch
