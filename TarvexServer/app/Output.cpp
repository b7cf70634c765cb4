#include "Output.h"

#include "WireText.h"

#include <algorithm>
#include <array>
#include <boost/json.hpp>
#include <cerrno>
#include <cstdio>
#include <iostream>
#include <unistd.h>

namespace tarvex::app {

namespace {

bool isSteering(char32_t character)
{
    const auto isWithin = [=](char32_t first, char32_t last) {
        return character >= first && character <= last;
    };
    return character < 0x20 || isWithin(0x7F, 0x9F) || isWithin(0x200E, 0x200F) || isWithin(0x2028, 0x202E) ||
           isWithin(0x2066, 0x2069);
}

} // namespace

std::shared_ptr<const bool> addJsonOption(CLI::App &command)
{
    const auto isWanted = std::make_shared<bool>(false);
    command.add_flag("--json", *isWanted, "Print one JSON document, for scripts");
    return isWanted;
}

void printJson(const boost::json::value &document)
{
    std::cout << boost::json::serialize(document) << "\n";
}

std::size_t writeOut(int descriptor, std::string_view bytes)
{
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t written = ::write(descriptor, bytes.data() + done, bytes.size() - done);
        if (written < 0 && errno != EINTR)
            break;
        done += static_cast<std::size_t>(std::max<ssize_t>(written, 0));
    }
    return done;
}

std::string sizeInWords(std::uintmax_t bytes)
{
    constexpr double mebibyte = 1024.0 * 1024;
    if (static_cast<double>(bytes) < mebibyte / 10)
        return std::to_string(bytes) + " bytes";
    std::array<char, 32> text{};
    const int length =
        std::snprintf(text.data(), text.size(), "%.1f MiB", static_cast<double>(bytes) / mebibyte);
    return {text.data(), static_cast<std::size_t>(length)};
}

std::string shown(std::string_view name)
{
    constexpr int longest = 60; // characters
    std::string line;
    for (int count = 0; !name.empty(); ++count) {
        if (count == longest)
            return line + "...";
        const std::size_t length = std::max<std::size_t>(wire::utf8SequenceLength(name), 1);
        const std::string_view character = name.substr(0, length);
        line += isSteering(wire::codePoint(character)) ? "?" : character;
        name.remove_prefix(length);
    }
    return line;
}

std::string counted(std::int64_t count, const std::string &noun)
{
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

} // namespace tarvex::app
