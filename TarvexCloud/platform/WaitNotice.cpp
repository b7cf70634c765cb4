#include "WaitNotice.h"

#include <QCoreApplication>

using namespace std::chrono_literals;

WaitNotice::WaitNotice(const QString &doing, std::chrono::milliseconds atMost,
                       const std::function<void(const QString &)> &say)
{
    const auto limit = std::chrono::duration_cast<std::chrono::seconds>(atMost).count();
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this, doing, limit, say] {
        say(QCoreApplication::translate("WaitNotice",
                                        "%1 Waiting for the service: %2\u00A0s of at most %3\u00A0s.")
                .arg(doing, QString::number((m_waited.elapsed() + 500) / 1000), QString::number(limit)));
    });
    m_waited.start();
    m_timer.start(1s);
}
