#pragma once

#include <boost/algorithm/string.hpp>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

/// The fields of one line of a sample file, as the bytes they stand for.
using SampleRow = std::vector<std::string>;

inline std::filesystem::path samplesFolder()
{
    return TARVEX_SAMPLES;
}

/// \r and \n stand for themselves, a backslash with two hexadecimal digits for any byte, and {c*9} for nine
/// times the character c.
inline std::string sampleBytes(std::string text)
{
    boost::replace_all(text, "\\r", "\r");
    boost::replace_all(text, "\\n", "\n");
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\\') {
            bytes += static_cast<char>(std::stoi(text.substr(at + 1, 2), nullptr, /*base=*/16));
            at += 2;
        } else if (text.compare(at, 1, "{") == 0 && text.compare(at + 2, 1, "*") == 0) {
            bytes.append(std::stoul(text.substr(at + 3)), text[at + 1]);
            at = text.find('}', at);
        } else {
            bytes += text[at];
        }
    }
    return bytes;
}

/// The rows of a file in the folder "samples" beside this one, each with that many fields, "|" between them.
/// Blanks at the ends of a field do not count; lines that start with "#" explain. Throws if a row has other
/// fields, or if there is none.
inline std::vector<SampleRow> sampleRows(const std::string &file, std::size_t fields)
{
    std::ifstream lines(samplesFolder() / file);
    std::vector<SampleRow> rows;
    for (std::string line; std::getline(lines, line);) {
        if (line.empty() || line.starts_with('#'))
            continue;
        SampleRow &row = rows.emplace_back();
        boost::split(row, line, [](char character) { return character == '|'; });
        if (row.size() != fields)
            throw std::runtime_error(line.append(" in ").append(file));
        for (std::string &field : row)
            field = sampleBytes(boost::trim_copy(field));
    }
    if (rows.empty())
        throw std::runtime_error("the samples of " + file + " are missing");
    return rows;
}
