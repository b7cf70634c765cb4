// Forms and cookies of browsers. What was read of a form is text, and is read again of a form made of it.

#include "Days.h"
#include "Fuzz.h"
#include "PageForm.h"
#include "WireText.h"

#include <cstdio>
#include <string>

using namespace tarvex;

namespace {

constexpr const char *names[] = {"a", "token", ""};

std::string escaped(std::string_view text)
{
    std::string bytes;
    for (const char character : text) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%%%02x", static_cast<unsigned char>(character));
        bytes += digits;
    }
    return bytes;
}

bool isUtf8(std::string_view text)
{
    while (!text.empty()) {
        const std::size_t length = wire::utf8SequenceLength(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

void readForm(std::string_view bytes)
{
    const auto form = pages::PageForm::read(bytes);
    if (!form)
        return;
    std::string again;
    for (const char *name : names)
        for (const std::string_view value : form->fields(name)) {
            require(isUtf8(value) && value.find('\0') == std::string::npos, "a value is text");
            again.append("&").append(escaped(name)).append("=").append(escaped(value));
        }
    const auto second = pages::PageForm::read(again);
    require(second.has_value(), "what is written as it must be is read");
    for (const char *name : names) {
        require(form->fields(name) == second->fields(name), "each value is read again");
        require(form->field(name).has_value() == (form->fields(name).size() == 1), "one value is one");
    }
}

void readCookies(std::string_view bytes)
{
    if (const auto value = pages::cookieValue(bytes, "tarvex")) {
        require(value->find(';') == std::string_view::npos, "a value ends before the next cookie");
        const std::string alone = "x=1; tarvex=" + std::string(*value);
        require(pages::cookieValue(alone, "tarvex") == value, "it is found among others");
        require(!pages::cookieValue(alone + "; tarvex=1", "tarvex"), "two are none");
    }
    if (const auto day = pages::dayOfText(bytes))
        require(pages::textOfDay(*day) == bytes, "a day is written as it was read");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    readForm(viewOf(bytes, size));
    readCookies(viewOf(bytes, size));
    return 0;
}
