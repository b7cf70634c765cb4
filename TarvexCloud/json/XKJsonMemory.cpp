#include "XKJsonMemory.h"

#include <utility>

// What goes may hold others that go with it, and these again, objects of the program's own among them. They
// wait in a list until the first is gone, since the machine stack has its end.
void XKJsonShared::destroy(XKJsonShared *last) noexcept
{
    thread_local XKJsonShared *waiting = nullptr;
    thread_local bool isDestroying = false;
    last->m_nextToDestroy = std::exchange(waiting, last);
    if (std::exchange(isDestroying, true))
        return;
    while (waiting)
        delete std::exchange(waiting, waiting->m_nextToDestroy);
    isDestroying = false;
}

XKJsonArena::XKJsonArena(const QString &text) : m_text(text), m_memory(m_first.data(), m_first.size())
{
    (void)m_text.utf16(); // makes sure of the zero, whatever memory the text was made from
}
