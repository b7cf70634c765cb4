#pragma once

#include <cstdio>
#include <QApplication>
#include <QEvent>
#include <QFile>
#include <QTimer>
#include <QWidget>
#include <unistd.h>

/// Ends the process once the window's first frame is painted and says on standard output how much memory was
/// resident then, in KiB. The time is taken by whoever started the process.
class FirstFrame : public QObject
{
public:
    explicit FirstFrame(QWidget *window) : m_window(window) { qApp->installEventFilter(this); }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (watched == m_window && event->type() == QEvent::Paint && !m_seen) {
            m_seen = true;
            QTimer::singleShot(0, this, &FirstFrame::report); // once the frame is out
        }
        return false;
    }

private:
    static void report()
    {
        QFile file(QStringLiteral("/proc/self/statm"));
        const bool open = file.open(QIODevice::ReadOnly);
        const qint64 pages = open ? file.readAll().split(' ').value(1).toLongLong() : 0;
        std::printf("%lld\n", static_cast<long long>(pages * sysconf(_SC_PAGESIZE) / 1024));
        std::fflush(stdout);
        std::_Exit(0);
    }

    QWidget *m_window;
    bool m_seen = false;
};
