// Runs every seed file of a corpus through its harness, outside libFuzzer: `fuzz_replay CORPUS`,
// where CORPUS/<name>/ holds the seeds of harness <name>. A breached check aborts; a folder with no
// harness, or a harness with no seed, fails.
#include "fuzz_harnesses.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s CORPUS_FOLDER\n", argv[0]);
        return 2;
    }
    namespace fs = std::filesystem;
    int failures = 0;
    for (auto const& h : fuzz_harnesses) {
        fs::path folder = fs::path(argv[1]) / h.name;
        std::size_t seeds = 0;
        if (fs::is_directory(folder))
            for (auto const& entry : fs::directory_iterator(folder)) {
                if (!entry.is_regular_file()) continue;
                std::ifstream in(entry.path(), std::ios::binary);
                std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
                h.run(reinterpret_cast<std::uint8_t const*>(bytes.data()), bytes.size());
                ++seeds;
            }
        std::printf("%s: %zu seeds\n", h.name, seeds);
        failures += seeds == 0;
    }
    for (auto const& entry : fs::directory_iterator(argv[1])) {
        bool known = false;
        for (auto const& h : fuzz_harnesses) known = known || entry.path().filename() == h.name;
        if (!known) std::printf("%s: no harness\n", entry.path().filename().c_str());
        failures += !known;
    }
    return failures == 0 ? 0 : 1;
}
