#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace tarvex::app {

/// Tells the service manager that started this process, if it wants to know, how the process is going: in
/// the words of sd_notify(3), as datagrams to the socket that the environment names. Never waits, and never
/// fails.
class ServiceManager
{
public:
    /// Reads the environment.
    ServiceManager();
    ~ServiceManager();
    ServiceManager(const ServiceManager &) = delete;
    ServiceManager &operator=(const ServiceManager &) = delete;

    void sayReady() const { say("READY=1"); }
    void sayReloading() const;
    void sayStopping() const { say("STOPPING=1"); }
    /// To be called often while all is well; tells so at half of the time after which the manager would lose
    /// patience.
    void sayAlive();

private:
    void say(std::string_view words) const;

    std::string m_address;
    int m_socket = -1;
    std::chrono::microseconds m_patience{0}; // none if it does not watch
    std::chrono::steady_clock::time_point m_lastSign;
};

} // namespace tarvex::app
