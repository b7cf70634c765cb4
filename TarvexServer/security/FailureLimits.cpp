#include "FailureLimits.h"

namespace tarvex::security {

bool FailureLimits::isExhausted(const std::string &key)
{
    const auto now = m_clock();
    const std::lock_guard lock(m_mutex);
    auto *failures = m_failures.find(key);
    if (failures == nullptr)
        return false;
    while (!failures->empty() && failures->front() + window <= now)
        failures->pop_front();
    return failures->size() >= limit;
}

void FailureLimits::countFailure(const std::string &key)
{
    const auto now = m_clock();
    const std::lock_guard lock(m_mutex);
    auto &failures = m_failures[key];
    failures.push_back(now);
    if (failures.size() > limit)
        failures.pop_front();
}

} // namespace tarvex::security
