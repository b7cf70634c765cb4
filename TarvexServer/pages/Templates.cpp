#include "Templates.h"

#include <functional>
#include <map>
#include <stdexcept>

namespace tarvex::pages {

namespace {

std::string_view file(std::string_view name)
{
    const auto found = fileOf(templateFiles, name);
    if (!found)
        throw std::logic_error("there is no page " + std::string(name));
    return *found;
}

/// The template of a page, which each thread reads once and has to itself.
kainjow::mustache::mustache &templateOf(std::string_view name)
{
    thread_local std::map<std::string, kainjow::mustache::mustache, std::less<>> known;
    auto found = known.find(name);
    if (found == known.end()) {
        std::string text(file("head.html"));
        text.append(file(std::string(name) + ".html")).append(file("foot.html"));
        found = known.try_emplace(std::string(name), text).first;
    }
    return found->second;
}

/// FNV-1a: it only has to differ when the text does.
std::string markOf(std::string_view text)
{
    std::uint32_t hash = 2'166'136'261U;
    for (const char character : text)
        hash = (hash ^ static_cast<unsigned char>(character)) * 16'777'619U;
    return std::to_string(hash);
}

} // namespace

std::optional<std::string_view> fileOf(const EmbeddedFiles &files, std::string_view name)
{
    for (const auto &[known, text] : files)
        if (known == name)
            return text;
    return {};
}

std::string page(std::string_view name, const Values &values)
{
    kainjow::mustache::mustache &made = templateOf(name);
    std::string page = made.render(values);
    if (!made.is_valid())
        throw std::logic_error("the page " + std::string(name) + " cannot be made: " + made.error_message());
    return page;
}

std::string markup(const std::string &text)
{
    return kainjow::mustache::html_escape(text);
}

std::string_view styleSheet()
{
    return file("style.css");
}

const std::string &styleMark()
{
    static const std::string mark = markOf(styleSheet());
    return mark;
}

std::string_view icon()
{
    return file("icon.svg");
}

} // namespace tarvex::pages
