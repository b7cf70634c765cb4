#pragma once

#include "Answer.h"
#include "PageTypes.h"

#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>

namespace tarvex::http {

/// Counts the bytes of answers that were built and not yet sent. For many threads; outlives its shares.
class AnswerMemory
{
public:
    /// Being counted, until the last copy has gone.
    using Share = std::shared_ptr<void>;

    explicit AnswerMemory(std::size_t most) : m_most(most) {}

    /// Counts an answer of that size, unless it is full already: the last one may go beyond. Small ones need
    /// no counting.
    std::optional<Share> take(std::size_t size)
    {
        if (size <= freeAnswer)
            return Share();
        if (m_bytes.fetch_add(size) < m_most)
            return Share(nullptr, [this, size](std::nullptr_t) { m_bytes -= size; });
        m_bytes -= size;
        return {};
    }

private:
    static constexpr std::size_t freeAnswer = 64UL * 1024;

    std::size_t m_most;
    std::atomic<std::size_t> m_bytes = 0;
};

/// An answer on its way to be sent.
struct BuiltAnswer
{
    requests::Answer answer;
    AnswerMemory::Share share = {};
};

/// A page on its way.
struct BuiltPage
{
    pages::Reply reply;
    AnswerMemory::Share share = {};
};

} // namespace tarvex::http
