#pragma once

#include <boost/json/value.hpp>
#include <CLI/App.hpp>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace tarvex::app {

/// Gives a command the option --json, and tells whether it was given.
std::shared_ptr<const bool> addJsonOption(CLI::App &command);

/// Prints one document on a line of its own.
void printJson(const boost::json::value &document);

/// Writes to the descriptor, and tells how many of the bytes could be written; where that is not all, errno
/// tells why.
std::size_t writeOut(int descriptor, std::string_view bytes);

/// A size in words for people: "512 bytes", "3.4 MiB".
std::string sizeInWords(std::uintmax_t bytes);

/// A name out of an account as a terminal may show it: on one line, bounded, and without characters that
/// steer terminals or turn the text around them.
std::string shown(std::string_view name);

/// So many of what the noun says: "1 goal", "2 goals".
std::string counted(std::int64_t count, const std::string &noun);

} // namespace tarvex::app
