// Reader inputs that end a read early: a cut large-field grid card, and a line too long for memory.
#include "exchange/nastran_input.h"
#include "exchange_files.h"
#include "tessarium/tessarium.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace qv7;
using namespace qv7::tessarium;
using namespace exchange_test;

TEST(HostileLines, CutLargeGridCardHasNoSecondLine)
{
    // The second card's line 2 is missing: it must not take the z of the first card.
    std::string grid = "GRID*                  1                 1.0             2.0*C\n*C          3.0\n";
    grouped_read d = read_text(
        __NASTRAN_input, "BEGIN BULK\n" + grid + "GRID*                  2" + "                 4.0             5.0*C",
        __max_node_ID);
    EXPECT_EQ(d.result, -1);
    ASSERT_EQ(d.pos.cols(), 1u);
    EXPECT_EQ(column(d.pos, 0), std::vector<double>({1.0, 2.0, 3.0}));
}

namespace {

// Runs read in a child whose address space can grow by 64 MB at most, on a file with a 256 MB line
// after `head`; true when it gives -199.
bool gives_minus_199_without_memory(std::string const& head, std::function<int(char const*)> read)
{
    std::string path = temp_path("long_line");
    {
        std::ofstream out(path, std::ios::binary);
        out << head;
        std::string chunk(1 << 20, '1');
        for (int k = 0; k < 256; ++k) out << chunk;
        out << "\n";
    }
    pid_t child = fork();
    if (child == 0) {
        long pages = 0;
        if (std::FILE* f = std::fopen("/proc/self/statm", "r")) {
            if (std::fscanf(f, "%ld", &pages) != 1) pages = 0;
            std::fclose(f);
        }
        rlim_t bytes = rlim_t(pages) * rlim_t(sysconf(_SC_PAGESIZE)) + (rlim_t(64) << 20);
        rlimit limit{bytes, bytes};
        if (pages == 0 || setrlimit(RLIMIT_AS, &limit) != 0) _exit(2);
        _exit(read(path.c_str()) == -199 ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    std::remove(path.c_str());
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace

TEST(HostileLines, LineTooLongForMemoryGivesMinus199)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizer's shadow memory needs more address space than the limit leaves";
#endif
    dense2D<double> pos, normals, textures;
    dense2D<unsigned> M, Q4;
    element_type FE;
    EXPECT_TRUE(
        gives_minus_199_without_memory("BEGIN BULK\n", [&](char const* p) { return NASTRAN_input(p, pos, M, FE); }));
    EXPECT_TRUE(gives_minus_199_without_memory("GRID*                  1                 1.0             2.0*C\n",
                                               [&](char const* p) { return NASTRAN_input(p, pos, M, FE); }));
    EXPECT_TRUE(
        gives_minus_199_without_memory("   -1\n   403\n", [&](char const* p) { return FEMAP_input(p, pos, M, FE); }));
    EXPECT_TRUE(gives_minus_199_without_memory(
        "v 1 2 3\n", [&](char const* p) { return WavefrontOBJ_input(p, pos, normals, textures, M, Q4); }));
}
