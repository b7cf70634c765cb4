#include "FailureCounts.h"

namespace tarvex::security {

std::int64_t FailureCounts::failuresOf(const std::string &key)
{
    const auto now = m_clock();
    const std::lock_guard lock(m_mutex);
    auto *failures = m_failures.find(key);
    if (failures == nullptr)
        return 0;
    while (!failures->empty() && failures->front() + window <= now)
        failures->pop_front();
    return static_cast<std::int64_t>(failures->size());
}

void FailureCounts::countFailure(const std::string &key)
{
    const auto now = m_clock();
    const std::lock_guard lock(m_mutex);
    auto &failures = m_failures[key];
    failures.push_back(now);
    if (failures.size() > most)
        failures.pop_front();
}

} // namespace tarvex::security
