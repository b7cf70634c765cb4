// Feeds a target every file of a folder once: its seeds, as an ordinary test.

#include "Fuzz.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

int main(int count, char **arguments)
{
    int fed = 0;
    for (const auto &entry : std::filesystem::directory_iterator(count > 1 ? arguments[1] : ".")) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::vector<char> bytes(std::istreambuf_iterator<char>(file), {});
        std::printf("%s\n", entry.path().filename().c_str());
        std::fflush(stdout);
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size());
        ++fed;
    }
    require(fed > 0, "there are seeds");
}
