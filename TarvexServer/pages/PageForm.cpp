#include "PageForm.h"

#include "Wipe.h"
#include "WireText.h"

#include <algorithm>
#include <charconv>

namespace tarvex::pages {

namespace {

constexpr unsigned hexDigitsPerByte = 2;

std::optional<std::string> decoded(std::string_view encoded)
{
    std::string text;
    text.reserve(encoded.size());
    for (; !encoded.empty(); encoded.remove_prefix(1)) {
        if (encoded.front() != '%') {
            text += encoded.front() == '+' ? ' ' : encoded.front();
            continue;
        }
        if (encoded.size() <= hexDigitsPerByte)
            return {};
        const char *const digits = encoded.data() + 1;
        const char *const end = digits + hexDigitsPerByte;
        unsigned byte = 0;
        if (std::from_chars(digits, end, byte, /*base=*/16).ptr != end)
            return {};
        text += static_cast<char>(byte);
        encoded.remove_prefix(hexDigitsPerByte);
    }
    return text;
}

bool isText(std::string_view bytes)
{
    while (!bytes.empty()) {
        const std::size_t length = wire::utf8SequenceLength(bytes);
        const char first = bytes.front();
        const bool isControl = (first >= 0 && first < ' ') || first == '\x7F';
        if (length == 0 || (isControl && first != '\t' && first != '\r' && first != '\n'))
            return false;
        bytes.remove_prefix(length);
    }
    return true;
}

/// The text up to the mark, which both are taken from the rest.
std::string_view takeUpTo(char mark, std::string_view &rest)
{
    const std::size_t end = std::min(rest.find(mark), rest.size());
    const std::string_view taken = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return taken;
}

} // namespace

PageForm::~PageForm()
{
    for (auto &[name, value] : m_fields)
        security::wipe(value);
}

std::optional<PageForm> PageForm::read(std::string_view encoded)
{
    PageForm form;
    while (!encoded.empty()) {
        std::string_view field = takeUpTo('&', encoded);
        if (field.empty())
            continue;
        auto name = decoded(takeUpTo('=', field));
        auto value = decoded(field);
        if (!name || !value || !isText(*name) || !isText(*value))
            return {};
        form.m_fields.emplace_back(std::move(*name), std::move(*value));
    }
    return form;
}

std::optional<std::string_view> PageForm::field(std::string_view name) const
{
    const auto values = fields(name);
    return values.size() == 1 ? std::optional(values.front()) : std::nullopt;
}

std::vector<std::string_view> PageForm::fields(std::string_view name) const
{
    std::vector<std::string_view> values;
    for (const auto &[known, value] : m_fields)
        if (known == name)
            values.emplace_back(value);
    return values;
}

std::optional<std::string_view> cookieValue(std::string_view cookies, std::string_view name)
{
    std::optional<std::string_view> found;
    while (!cookies.empty()) {
        std::string_view cookie = takeUpTo(';', cookies);
        cookie.remove_prefix(std::min(cookie.find_first_not_of(" \t"), cookie.size()));
        if (takeUpTo('=', cookie) != name)
            continue;
        if (found)
            return {}; // somebody else put one there
        found = cookie.substr(0, cookie.find_last_not_of(" \t") + 1);
    }
    return found;
}

} // namespace tarvex::pages
