#pragma once

#include <boost/algorithm/string.hpp>
#include <boost/regex.hpp>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

/// The fields of one line of a sample file, as the bytes they stand for.
using SampleRow = std::vector<std::string>;

/// \r and \n stand for themselves, a backslash with two hexadecimal digits for any byte, and {text*9} for
/// nine times the text.
inline std::string sampleBytes(std::string text)
{
    static const boost::regex repeated(R"(\{([^{}*]+)\*(\d+)\})");
    boost::replace_all(text, "\\r", "\r");
    boost::replace_all(text, "\\n", "\n");
    std::string bytes;
    for (std::size_t at = 0; at < text.size();) {
        boost::cmatch found;
        if (boost::regex_search(text.c_str() + at, found, repeated, boost::match_continuous)) {
            for (auto left = std::stoul(found[2]); left > 0; --left)
                bytes += found[1];
            at += static_cast<std::size_t>(found.length());
        } else if (text[at] == '\\') {
            bytes += static_cast<char>(std::stoi(text.substr(at + 1, 2), nullptr, /*base=*/16));
            at += 3;
        } else {
            bytes += text[at++];
        }
    }
    return bytes;
}

/// The rows of a file in the folder "samples" beside the test, "|" between their fields. Blanks at the ends
/// of a field do not count; lines that start with "#" explain. Throws if there is no row, or one of another
/// length.
inline std::vector<SampleRow> sampleRows(const std::string &file)
{
    std::ifstream lines(TARVEX_SAMPLES "/" + file);
    std::vector<SampleRow> rows;
    for (std::string line; std::getline(lines, line);) {
        if (line.empty() || line.starts_with('#'))
            continue;
        SampleRow &row = rows.emplace_back();
        boost::split(row, line, [](char character) { return character == '|'; });
        if (row.size() != rows.front().size())
            throw std::runtime_error(line.append(" in ").append(file));
        for (std::string &field : row)
            field = sampleBytes(boost::trim_copy(field));
    }
    if (rows.empty())
        throw std::runtime_error("the samples of " + file + " are missing");
    return rows;
}

/// The names of the files in a folder of samples, without ".txt".
inline std::vector<std::string> samplesIn(const std::string &folder)
{
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(TARVEX_SAMPLES "/" + folder))
        names.push_back(entry.path().stem());
    return names;
}

/// What the expression's group meets, one after the other.
inline std::vector<std::string> matches(const std::string &text, const std::string &expression)
{
    const boost::regex regex(expression);
    std::vector<std::string> found;
    for (boost::sregex_iterator next(text.begin(), text.end(), regex), end; next != end; ++next)
        found.push_back((*next)[1]);
    return found;
}
