#include "Announcement.h"

#include <chrono>
#include <QAccessibleWidget>

namespace {

// Screen readers drop what comes with a flood of other changes, as a window's coming and going brings.
constexpr std::chrono::milliseconds timeToSettle{250};

QAccessibleInterface *makeInterface(const QString &, QObject *object)
{
    auto *announcement = qobject_cast<Announcement *>(object);
    return announcement ? new QAccessibleWidget(announcement, QAccessible::Notification) : nullptr;
}

} // namespace

Announcement::Announcement(QWidget *window) : QWidget(window)
{
    QAccessible::installFactory(makeInterface);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    resize(1, 1);
    hide();
    m_settled.setSingleShot(true);
    connect(&m_settled, &QTimer::timeout, this, &Announcement::say);
}

void Announcement::make(const QWidget *widget, const QString &text)
{
    QWidget *window = widget->window();
    auto *announcement = window->findChild<Announcement *>(QString(), Qt::FindDirectChildrenOnly);
    if (!announcement)
        announcement = new Announcement(window);
    announcement->m_text = text;
    announcement->m_settled.start(timeToSettle);
}

void Announcement::say()
{
    hide();
    if (m_text.isEmpty() || !window()->isVisible())
        return;
    setAccessibleName(m_text);
    show(); // which desktops on Linux are told
    QAccessibleEvent event(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
}

void Announcement::hideEvent(QHideEvent *event)
{
    m_settled.stop();
    hide(); // by itself, not with its window alone
    QWidget::hideEvent(event);
}
