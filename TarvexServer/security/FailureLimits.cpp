#include "FailureLimits.h"

namespace tarvex::security {

bool FailureLimits::admit(const std::string &key)
{
    const auto now = m_clock();
    const std::lock_guard lock(m_mutex);
    auto &attempts = m_attempts[key];
    while (!attempts.empty() && attempts.front() + window <= now)
        attempts.pop_front();
    if (attempts.size() >= limit)
        return false;
    attempts.push_back(now);
    return true;
}

void FailureLimits::forgive(const std::string &key)
{
    const std::lock_guard lock(m_mutex);
    auto *attempts = m_attempts.find(key);
    if (attempts != nullptr && !attempts->empty())
        attempts->pop_back();
}

} // namespace tarvex::security
