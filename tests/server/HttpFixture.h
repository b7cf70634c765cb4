#pragma once

#include "RawClient.h"
#include "Server.h"
#include "ServiceFixture.h"

#include <memory>
#include <thread>

/// A server over the service of the fixture, on a thread of its own.
struct Http : ServiceFixture
{
    ~Http() override { stop(); }

    void start(const tarvex::http::Limits &limits = {}, const tarvex::http::Proxies &proxies = {})
    {
        m_server = std::make_unique<tarvex::http::Server>(m_service, "127.0.0.1", /*port=*/0, limits,
                                                          tarvex::http::Reporter(), proxies);
        m_server->show(m_site);
        m_thread = std::thread([this] { m_server->run(); });
    }
    void stop()
    {
        if (!m_thread.joinable())
            return;
        m_server->drain();
        m_thread.join();
    }
    std::uint16_t port() const { return m_server->port(); }

    tarvex::pages::Site *m_site = nullptr; // if there are to be pages
    std::unique_ptr<tarvex::http::Server> m_server;
    std::thread m_thread;
};
