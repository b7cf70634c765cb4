#pragma once

#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarvex::pages {

/// The fields of a form as browsers send it (application/x-www-form-urlencoded), or of a query. Values are
/// valid as long as the form.
class PageForm
{
public:
    PageForm() = default;
    PageForm(PageForm &&) = default;
    PageForm &operator=(PageForm &&other) noexcept
    {
        m_fields.swap(other.m_fields); // so that the other one wipes what was in here
        return *this;
    }
    /// Leaves no password in memory.
    ~PageForm();

    /// Nothing if any of it is not encoded as it must be, no UTF-8, or holds control characters but for tabs
    /// and line ends.
    static std::optional<PageForm> read(std::string_view encoded);

    /// The value of a field that is there once; nothing otherwise.
    std::optional<std::string_view> field(std::string_view name) const;
    /// The values of a field that may be there several times.
    std::vector<std::string_view> fields(std::string_view name) const;

private:
    std::deque<std::pair<std::string, std::string>> m_fields; // which stay where they are
};

/// The value of a cookie that is there once (RFC 6265, 4.2); nothing otherwise.
std::optional<std::string_view> cookieValue(std::string_view cookies, std::string_view name);

} // namespace tarvex::pages
