#pragma once

#include <CLI/App.hpp>
#include <map>
#include <string>

namespace tarvex::app {

// What the values of options must be, for all places that they come from, and a sentence where they are not.

/// One of the words, for which its value is taken.
template<class Value>
CLI::Validator oneOf(const std::map<std::string, Value> &values)
{
    std::string words;
    for (const auto &[word, value] : values)
        words += (words.empty() ? "" : ", ") + word;
    return {[values, words](std::string &text) -> std::string {
                const auto found = values.find(text);
                if (found == values.end())
                    return text + " is none of " + words;
                text = std::to_string(static_cast<int>(found->second));
                return "";
            },
            ""};
}

/// Something that the function reads, which tells whether it could.
template<class Read>
CLI::Validator readBy(Read read, const std::string &form)
{
    return CLI::Validator(
        [read, form](std::string &text) { return read(text) ? "" : text + " is not of the form " + form; },
        "");
}

} // namespace tarvex::app
