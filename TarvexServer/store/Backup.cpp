#include "Backup.h"

#include "Integrity.h"
#include "PrivateFile.h"
#include "SqliteFile.h"
#include "StoreError.h"
#include "UseLock.h"

#include <algorithm>
#include <array>
#include <boost/regex.hpp>
#include <map>

namespace tarvex::store {

namespace {

using RowCounts = std::map<std::string, std::int64_t>; // by table

RowCounts rowCounts(SqliteConnection &session)
{
    RowCounts counts;
    Rows tables = session.rows("SELECT name FROM sqlite_master WHERE type = 'table'");
    while (tables.next()) {
        const std::string table(tables.text(0));
        counts[table] = session.numberOf("SELECT COUNT(*) FROM \"" + table + "\"");
    }
    return counts;
}

/// Writes the copy into a session of its own, and looks whether it is whole.
RowCounts copyInto(SqliteConnection &copy, SqliteConnection &source, std::chrono::milliseconds pause)
{
    source.execute("BEGIN"); // so that all steps see the same
    RowCounts counts = rowCounts(source);
    source.copyTo(copy, pause);
    source.execute("COMMIT");
    copy.endLog();
    if (const auto found = damages(copy); !found.empty())
        throw MaintenanceFailed("The copy is not whole, and neither may the database be: " + found.front());
    if (rowCounts(copy) != counts)
        throw MaintenanceFailed("The copy does not hold what the database does.");
    return counts;
}

bool isOurDatabase(const std::filesystem::path &file)
{
    try {
        openAsItIs(file);
        return true;
    } catch (const CannotOpen &) {
        return false;
    }
}

} // namespace

Copied copyDatabase(const std::filesystem::path &file, const std::filesystem::path &target,
                    std::chrono::milliseconds pause)
{
    const std::unique_ptr<SqliteConnection> source = openAsItIs(file);
    const std::filesystem::path partial = target.string() + ".part";
    makePrivateFile(partial);
    try {
        SqliteConnection copy(partial);
        copy.keepToItself(); // one at a time; what a killed one left is written over
        const UnfinishedFile unfinished(partial);
        RowCounts counts = copyInto(copy, *source, pause);
        putInPlace(partial, target);
        return {.accounts = counts["account"], .bytes = std::filesystem::file_size(target)};
    } catch (const TransactionHindered &) {
        throw MaintenanceFailed("Another process writes a copy to " + target.string() + " at the moment.");
    } catch (const TransactionFailed &error) {
        throw MaintenanceFailed("The copy " + target.string() + " cannot be made: " + error.what() + ".");
    }
}

void requireFreeOrCopy(const std::filesystem::path &target, const std::filesystem::path &database)
{
    if (!std::filesystem::exists(target))
        return;
    if (std::filesystem::equivalent(target, database) || std::filesystem::exists(UseLock::fileOf(target)) ||
        std::filesystem::exists(target.string() + "-wal"))
        throw MaintenanceFailed("The file " + target.string() + " is no copy but a database that is used.");
    if (std::filesystem::file_size(target) != 0 && !isOurDatabase(target))
        throw MaintenanceFailed("The file " + target.string() + " is there, and no copy of a database.");
}

std::string timeForNames(std::time_t time)
{
    std::tm parts = {};
    ::gmtime_r(&time, &parts);
    std::array<char, 32> text{};
    return {text.data(), std::strftime(text.data(), text.size(), "%Y%m%d-%H%M%S", &parts)};
}

std::filesystem::path datedCopy(const std::filesystem::path &folder, const std::filesystem::path &file,
                                std::time_t time)
{
    return folder / (file.stem().string() + "-" + timeForNames(time) + ".db");
}

std::vector<std::filesystem::path> removeOldCopies(const std::filesystem::path &folder,
                                                   const std::filesystem::path &file, std::size_t kept)
{
    const boost::regex pattern("-[0-9]{8}-[0-9]{6}\\.db");
    const std::string stem = file.stem().string();
    std::vector<std::filesystem::path> copies;
    for (const auto &entry : std::filesystem::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        if (name.starts_with(stem) && boost::regex_match(name.substr(stem.size()), pattern) &&
            isOurDatabase(entry.path()))
            copies.push_back(entry.path());
    }
    std::sort(copies.begin(), copies.end());
    copies.resize(copies.size() - std::min(kept, copies.size()));
    for (const std::filesystem::path &copy : copies) {
        std::filesystem::remove(copy);
        std::filesystem::remove(copy.string() + ".secret");
    }
    return copies;
}

} // namespace tarvex::store
