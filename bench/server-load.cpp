// Clients of the service: kept connections, each of which waits for its answer before it sends the next
// request. Prints, as JSON, how many answers came in how many seconds, how many of them were no success, and
// the median and the 99th percentile of the times they took, in microseconds.
//
//   bench-server-load PORT CONNECTIONS SECONDS PAUSE asleep|awake < BODIES
//
// Bodies come one a line, or pages as "GET TARGET COOKIE", and are sent in turn, so as many bodies as
// connections give each its own; after 0 seconds means after all of them, once. Each connection pauses for so
// many microseconds before a request. Clients with a core of their own wait awake: to wake them would cost
// the server microseconds, which it does not pay for clients on other machines.

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <iostream>
#include <netinet/tcp.h>
#include <string>
#include <string_view>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

struct Load
{
    std::uint16_t port = 0;
    std::size_t connections = 1;
    std::chrono::duration<double> seconds{};
    std::chrono::microseconds pause{};
    bool waitsAwake = false;
    std::vector<std::string> requests;

    int events = ::epoll_create1(0);
    Clock::time_point begin = Clock::now();
    std::size_t failures = 0;
    std::vector<double> microseconds;
};

class Client
{
public:
    Client(Load &load, std::size_t number) : m_load(load), m_number(number) { connect(); }

    /// Sends the next request unless there is none.
    void begin()
    {
        const bool isTimed = m_load.seconds.count() > 0;
        m_isDone =
            isTimed ? Clock::now() - m_load.begin > m_load.seconds : m_number >= m_load.requests.size();
        if (m_isDone)
            return;
        std::this_thread::sleep_for(m_load.pause);
        m_request = m_load.requests[m_number % m_load.requests.size()];
        m_number += m_load.connections;
        m_answer.clear();
        m_begin = Clock::now();
        goOn();
    }

    /// Sends and reads what can be; the socket tells once when there is more.
    void goOn()
    {
        // Piece by piece, or the kernel would hold up whoever these clients give way to.
        constexpr std::size_t piece = 64 * 1024;
        while (!m_request.empty()) {
            const auto sent =
                ::send(m_socket, m_request.data(), std::min(piece, m_request.size()), MSG_NOSIGNAL);
            if (sent <= 0)
                break;
            m_request.remove_prefix(static_cast<std::size_t>(sent));
        }
        static char bytes[256 * 1024];
        ssize_t size = 0;
        while (!isWhole() && (size = ::recv(m_socket, bytes, sizeof bytes, 0)) > 0)
            m_answer.append(bytes, static_cast<std::size_t>(size));
        const bool isClosed = size == 0 || (size < 0 && errno != EAGAIN);
        if (isWhole() || isClosed)
            end();
    }

    bool isDone() const { return m_isDone; }

private:
    void connect()
    {
        m_socket = ::socket(AF_INET, SOCK_STREAM, 0);
        const sockaddr_in address{.sin_family = AF_INET,
                                  .sin_port = htons(m_load.port),
                                  .sin_addr = {htonl(INADDR_LOOPBACK)},
                                  .sin_zero = {}};
        if (::connect(m_socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) {
            std::perror("connect");
            std::exit(1);
        }
        const int on = 1;
        ::setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        ::fcntl(m_socket, F_SETFL, O_NONBLOCK);
        epoll_event event{.events = EPOLLIN | EPOLLOUT | EPOLLET, .data = {.ptr = this}};
        ::epoll_ctl(m_load.events, EPOLL_CTL_ADD, m_socket, &event);
    }

    bool isWhole() const
    {
        static constexpr std::string_view field = "Content-Length: ";
        const std::size_t head = m_answer.find("\r\n\r\n");
        if (head == std::string::npos)
            return false;
        const std::size_t length = m_answer.find(field);
        return length < head &&
               m_answer.size() >= head + 4 + std::stoul(m_answer.substr(length + field.size(), 10));
    }

    void end()
    {
        m_load.microseconds.push_back(
            std::chrono::duration<double, std::micro>(Clock::now() - m_begin).count());
        const bool isKept = m_request.empty() && m_answer.starts_with("HTTP/1.1 200 ");
        m_load.failures += !isKept || m_answer.ends_with("\r\n\r\nError");
        if (!isKept) {
            ::close(m_socket);
            connect();
        }
        begin();
    }

    Load &m_load;
    std::size_t m_number;
    int m_socket = -1;
    std::string_view m_request; // what is not sent yet
    std::string m_answer;
    Clock::time_point m_begin;
    bool m_isDone = false;
};

void run(Load &load)
{
    std::vector<Client> clients;
    clients.reserve(load.connections); // they stay where they are
    for (std::size_t number = 0; number < load.connections; ++number)
        clients.emplace_back(load, number);
    load.begin = Clock::now();
    for (Client &client : clients)
        client.begin();
    while (
        !std::all_of(clients.begin(), clients.end(), [](const Client &client) { return client.isDone(); })) {
        epoll_event ready[64];
        const int count = ::epoll_wait(load.events, ready, std::size(ready), load.waitsAwake ? 0 : -1);
        for (int i = 0; i < count; ++i) {
            auto *client = static_cast<Client *>(ready[i].data.ptr);
            if (!client->isDone())
                client->goOn();
        }
    }
}

std::string request(const std::string &body)
{
    return "POST /tarvex/ HTTP/1.1\r\nHost: localhost\r\nContent-Length: " + std::to_string(body.size()) +
           "\r\n\r\n" + body;
}

/// Of "GET TARGET COOKIE".
std::string pageRequest(const std::string &line)
{
    const std::size_t end = line.rfind(' ');
    return line.substr(0, end) + " HTTP/1.1\r\nHost: localhost\r\nCookie: " + line.substr(end + 1) +
           "\r\n\r\n";
}

} // namespace

int main(int count, char **arguments)
{
    if (count != 6)
        return 2;
    Load load{.port = static_cast<std::uint16_t>(std::stoul(arguments[1])),
              .connections = std::stoul(arguments[2]),
              .seconds = std::chrono::duration<double>(std::stod(arguments[3])),
              .pause = std::chrono::microseconds(std::stol(arguments[4])),
              .waitsAwake = arguments[5] == std::string_view("awake"),
              .requests = {},
              .microseconds = {}};
    for (std::string body; std::getline(std::cin, body);)
        load.requests.push_back(body.starts_with("GET ") ? pageRequest(body) : request(body));
    run(load);
    const std::chrono::duration<double> seconds = Clock::now() - load.begin;
    std::vector<double> &times = load.microseconds;
    std::sort(times.begin(), times.end());
    std::cout << "{\"requests\": " << times.size() << ", \"seconds\": " << seconds.count()
              << ", \"failures\": " << load.failures << ", \"p50\": " << times[times.size() / 2]
              << ", \"p99\": " << times[times.size() * 99 / 100] << "}\n";
}
