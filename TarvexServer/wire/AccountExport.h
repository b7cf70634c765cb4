#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tarvex::wire {

/// All that a person has written into an account, apart from any database. Texts are what was typed, not wire
/// text. Times are seconds since 1970.
struct AccountExport
{
    struct Area
    {
        std::string name;
        std::int32_t value = 0;
    };
    struct Goal
    {
        std::int64_t area = 0; ///< counts from 1
        std::string name;
        std::int32_t priority = 0;
        bool isDone = false;
        std::optional<std::int64_t> deletedAt = {};
    };
    struct Set
    {
        std::string name;
        std::optional<std::int64_t> deletedAt = {};
        std::vector<Goal> goals = {};
    };

    std::string name;
    std::vector<Area> areas; ///< in the order of the wheel
    std::vector<Set> sets;   ///< in the order in which they were made, as the goals in them
};

/// An export cannot be read; what() is a sentence that names the place.
class ExportDamaged : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// As JSON that people can read too, a goal a line.
std::string writeExport(const AccountExport &account);

/// Reads what the above wrote or somebody changed in it since; what is marked as deleted is passed over, as
/// are members of other names. Throws ExportDamaged.
AccountExport readExport(std::string_view json);

/// As a table for spreadsheets (RFC 4180), a goal a row; a set without goals has one row. Nothing if it would
/// be larger than the below: each row has the names of set and area, however long they are.
std::optional<std::string> writeTable(const AccountExport &account);

/// In bytes.
constexpr std::size_t largestTable = 64UL * 1024 * 1024;

/// No larger file is read, in bytes. An export can be larger, most of all one with what was deleted, which is
/// passed over anyway.
constexpr std::size_t largestExport = 32UL * 1024 * 1024;

} // namespace tarvex::wire
