#include "Templates.h"

#include "EmbeddedFiles.h"

#include <stdexcept>

namespace tarvex::pages {

namespace {

std::string_view file(std::string_view name)
{
    for (const auto &[known, text] : embeddedFiles)
        if (known == name)
            return text;
    throw std::logic_error("there is no page " + std::string(name));
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

std::string page(std::string_view name, const Values &values)
{
    std::string text(file("head.html"));
    text.append(file(std::string(name) + ".html")).append(file("foot.html"));
    kainjow::mustache::mustache made(text);
    std::string page = made.render(values);
    if (!made.is_valid())
        throw std::logic_error("the page " + std::string(name) + " cannot be made: " + made.error_message());
    return page;
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
    return file("tarvex-cloud.svg");
}

} // namespace tarvex::pages
