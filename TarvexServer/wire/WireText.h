#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tarvex::wire {

/// The longest name a request can bring in, in bytes of its wire form.
constexpr std::size_t maximumNameSize = 64UL * 1024;

/// A name as the store keeps it: the wire text as it came, braces tokens and all, without what XML 1.0 cannot
/// carry (control characters other than tab, line feed and carriage return; U+FFFE, U+FFFF; bytes that are
/// not UTF-8). Nothing if its wire form is longer than maximumNameSize: a name is refused, never cut.
std::optional<std::string> storableName(std::string_view wireText);

/// Bytes the text takes when a client sends it back: one that received a bare "?" sends "{_quest_}".
std::size_t escapedSize(std::string_view wireText);

/// The wire text of what somebody typed, and what somebody typed to send a wire text. A token that was typed
/// comes back as its character, as it does for clients.
std::string escaped(std::string_view typedText);
std::string unescaped(std::string_view wireText);

/// Length of the UTF-8 sequence at the start of the text, at most 4; 0 if there is none that is well formed.
std::size_t utf8SequenceLength(std::string_view text);

/// The code point of a well-formed sequence.
char32_t codePoint(std::string_view sequence);

} // namespace tarvex::wire
