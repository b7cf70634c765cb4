#pragma once

#include "TVXExchange.h"

#include <memory>

class TVXRequestWait;

/// The exchange over plain HTTP. One object keeps one connection; the product has a single one.
///
/// Any complete answer counts, whatever its status; redirects are not followed. An answer longer than
/// 128 MiB, or one cut short, is no answer.
class CurlExchange : public TVXExchange
{
public:
    /// The URL must be an http one. The deadline covers the whole request, from the look-up of the host to
    /// the last byte. `wait` must outlive the exchange.
    CurlExchange(const QByteArray &url, std::chrono::milliseconds deadline, TVXRequestWait &wait);
    ~CurlExchange() override;

    TVXAnswer post(const QByteArray &body, TVXPurpose purpose = TVXPurpose::Writing) override;
    void prepare() override;
    bool isBusy() const override { return m_busy; }
    std::chrono::milliseconds deadline() const override { return m_deadline; }
    QString address() const override;

private:
    class Handles;

    const QByteArray m_url;
    const std::chrono::milliseconds m_deadline;
    TVXRequestWait &m_wait;
    std::unique_ptr<Handles> m_handles;
    bool m_busy = false;
};
