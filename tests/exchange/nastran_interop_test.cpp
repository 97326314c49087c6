// Decks written here, loaded by other software where this machine has it.
#include "exchange_files.h"
#include "tessarium/tessarium.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

using namespace qv7;
using namespace qv7::tessarium;

namespace {

bool available(char const* probe) { return std::system((std::string(probe) + " >/dev/null 2>&1").c_str()) == 0; }

std::string output_of(std::string const& command)
{
    std::string text;
    if (std::FILE* pipe = popen(command.c_str(), "r")) {
        char buffer[256];
        while (std::fgets(buffer, sizeof buffer, pipe)) text += buffer;
        pclose(pipe);
    }
    return text;
}

// Two elements of each type, the second one node further on; every node is used.
std::string write_deck(std::string const& name, std::vector<element_type> const& types)
{
    std::size_t n = types.size();
    dense2D<double> pos;
    pos.resize(3, 21, 0.0);
    for (std::size_t j = 0; j < 21; ++j) pos(0, j) = double(j), pos(1, j) = double(j * j % 7), pos(2, j) = -0.5 * j;
    dense2D<unsigned> M;
    M.resize(20, 2 * n, NONE_ID);
    dense1D<unsigned, 8> indices, PIDs;
    dense1D<int, 8> FEs;
    for (std::size_t g = 0; g < n; ++g) {
        indices.push_back(unsigned(2 * g));
        FEs.push_back(types[g]);
        for (unsigned c = 0; c < 2; ++c) {
            for (unsigned i = 0; i < nbr_nodes(types[g]); ++i) M(i, 2 * g + c) = i + c;
            PIDs.push_back(unsigned(g + 1));
        }
    }
    indices.push_back(unsigned(2 * n));
    std::string path = exchange_test::temp_path(name);
    EXPECT_EQ(NASTRAN_output(path.c_str(), pos, M, indices, FEs, PIDs), 0);
    return path;
}

}  // namespace

TEST(NastranInterop, MeshioReadsOurDecks)
{
    if (!available("/usr/bin/python3 -c 'import meshio'")) GTEST_SKIP() << "meshio is not installed";
    // This meshio knows no 13-node pyramid and no 15-node wedge; every other card goes.
    std::string path = write_deck("meshio.bdf", {ET_EDGE2, ET_FACE_T3, ET_FACE_Q4, ET_FACE_T6, ET_FACE_Q8, ET_TETRA4,
                                                 ET_TETRA10, ET_PYRAMID5, ET_WEDGE6, ET_HEXA8, ET_HEXA20});
    std::string counts = output_of("/usr/bin/python3 -c \"import meshio; m = meshio.read('" + path +
                                   "', file_format='nastran'); print(len(m.points), "
                                   "sorted(c.data.shape[1] for c in m.cells for _ in c.data))\"");
    EXPECT_EQ(counts, "21 [2, 2, 3, 3, 4, 4, 4, 4, 5, 5, 6, 6, 6, 6, 8, 8, 8, 8, 10, 10, 20, 20]\n");
}

TEST(NastranInterop, GmshReadsOurDecks)
{
    if (!available("gmsh --version")) GTEST_SKIP() << "gmsh is not installed";
    std::string path = write_deck("gmsh.bdf", {ET_EDGE2, ET_FACE_T3, ET_FACE_Q4, ET_FACE_T6, ET_FACE_Q8, ET_TETRA4,
                                               ET_TETRA10, ET_PYRAMID5, ET_PYRAMID13, ET_WEDGE6, ET_WEDGE15, ET_HEXA8,
                                               ET_HEXA20});
    std::string msh = exchange_test::temp_path("gmsh.msh");
    std::remove(msh.c_str());
    output_of("gmsh '" + path + "' -0 -o '" + msh + "' -format msh22 2>&1");
    std::string text = exchange_test::read_file(msh);
    auto count_after = [&](char const* section) {
        std::size_t at = text.find(section);
        return at == std::string::npos ? -1L : std::strtol(text.c_str() + at + std::string(section).size(), nullptr, 10);
    };
    EXPECT_EQ(count_after("$Nodes\n"), 21);
    EXPECT_EQ(count_after("$Elements\n"), 26);
}
