#include "ServiceManager.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace tarvex::app {

namespace {

std::string_view variable(const char *name)
{
    const char *const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

long long numberOf(std::string_view text)
{
    long long number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

} // namespace

ServiceManager::ServiceManager() : m_address(variable("NOTIFY_SOCKET"))
{
    if (m_address.empty() || m_address.size() >= sizeof(sockaddr_un::sun_path))
        return;
    m_socket = ::socket(AF_UNIX, SOCK_DGRAM, 0);
    if (m_address.front() == '@')
        m_address.front() = '\0'; // a name that is in no folder
    const std::string_view watched = variable("WATCHDOG_PID");
    if (watched.empty() || numberOf(watched) == ::getpid())
        m_patience = std::chrono::microseconds(std::max(0LL, numberOf(variable("WATCHDOG_USEC"))));
}

ServiceManager::~ServiceManager()
{
    if (m_socket >= 0)
        ::close(m_socket);
}

void ServiceManager::sayReloading() const
{
    using namespace std::chrono;
    const auto now = duration_cast<microseconds>(steady_clock::now().time_since_epoch());
    say("RELOADING=1\nMONOTONIC_USEC=" + std::to_string(now.count()));
}

void ServiceManager::sayAlive()
{
    const auto now = std::chrono::steady_clock::now();
    if (m_patience.count() == 0 || now < m_lastSign + m_patience / 2)
        return;
    m_lastSign = now;
    say("WATCHDOG=1");
}

void ServiceManager::say(std::string_view words) const
{
    if (m_socket < 0)
        return;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::copy(m_address.begin(), m_address.end(), address.sun_path);
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + m_address.size());
    ::sendto(m_socket, words.data(), words.size(), MSG_DONTWAIT, reinterpret_cast<const sockaddr *>(&address),
             length); // as sockets want it
}

} // namespace tarvex::app
