#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>
#include <functional>
#include <iostream>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The HTTP side of the bare servers: one thread, no limits, times or log.

namespace asio = boost::asio;
namespace http = boost::beast::http;
using asio::ip::tcp;
using Error = boost::beast::error_code;
using Done = std::function<void(std::string answer)>;
using Serve = std::function<void(const std::string &body, Done done)>;

class Connection : public std::enable_shared_from_this<Connection>
{
public:
    Connection(tcp::socket socket, const Serve &serve) : m_socket(std::move(socket)), m_serve(serve) {}

    void read()
    {
        m_request = {};
        http::async_read(
            m_socket, m_buffer, m_request, [self = shared_from_this()](Error error, std::size_t) {
                if (!error)
                    self->m_serve(self->m_request.body(),
                                  [self](std::string answer) { self->write(std::move(answer)); });
            });
    }

private:
    void write(std::string answer)
    {
        m_response = {http::status::ok, 11};
        m_response.set(http::field::content_type, "text/xml; charset=utf-8");
        m_response.body() = std::move(answer);
        m_response.prepare_payload();
        http::async_write(m_socket, m_response, [self = shared_from_this()](Error error, std::size_t) {
            if (!error)
                self->read();
        });
    }

    tcp::socket m_socket;
    const Serve &m_serve;
    boost::beast::flat_buffer m_buffer;
    http::request<http::string_body> m_request;
    http::response<http::string_body> m_response;
};

inline void accept(tcp::acceptor &acceptor, const Serve &serve)
{
    acceptor.async_accept([&](Error error, tcp::socket socket) {
        if (!error) {
            socket.set_option(tcp::no_delay(true));
            std::make_shared<Connection>(std::move(socket), serve)->read();
        }
        accept(acceptor, serve);
    });
}

/// What stands behind the mark, up to the next field.
inline std::string_view field(std::string_view body, std::string_view mark)
{
    const std::string_view rest = body.substr(body.find(mark) + mark.size());
    return rest.substr(0, rest.find('&'));
}

inline void addGoal(std::string &answer, std::string_view id, std::string_view name,
                    std::string_view priority, bool isChecked)
{
    answer.append("<record><id>").append(id).append("</id><name>").append(name);
    answer.append("</name><priority>").append(priority);
    answer.append("</priority><checked>").append(isChecked ? "y" : "n").append("</checked></record>");
}

/// Those whose requests are answered once they are committed together.
using Logins = std::vector<std::string>;

/// Hands all that waits to a thread that commits, and answers when it has.
inline Serve inGroups(asio::io_context &io, std::function<void(const Logins &)> commit)
{
    struct Group
    {
        std::function<void(const Logins &)> commit;
        std::mutex mutex{};
        Logins logins{};
        std::vector<Done> waiting{};
        asio::thread_pool writer{1};
    };
    const auto group = std::make_shared<Group>(std::move(commit));
    const auto write = [group, &io] {
        Logins logins;
        std::vector<Done> batch;
        {
            const std::lock_guard lock(group->mutex);
            logins.swap(group->logins);
            batch.swap(group->waiting);
        }
        if (batch.empty()) // an earlier one took them all
            return;
        group->commit(logins);
        for (Done &done : batch)
            asio::post(io, [told = std::move(done)] { told("OK"); });
    };
    return [group, write](const std::string &body, Done done) {
        const std::lock_guard lock(group->mutex);
        group->logins.emplace_back(field(body, "&p2="));
        group->waiting.push_back(std::move(done));
        asio::post(group->writer, write);
    };
}

/// Serves for as long as the process runs, and says where.
inline void listen(asio::io_context &io, const Serve &serve)
{
    tcp::acceptor acceptor(io, {asio::ip::address_v4::loopback(), 0});
    accept(acceptor, serve);
    std::cout << "READY http://127.0.0.1:" << acceptor.local_endpoint().port() << "/" << std::endl;
    io.run();
}
