// The library keeps no state: writers, readers, merge and get_neighbors run side by side on
// separate data and give what they give alone. Run under ThreadSanitizer by scripts/run_tests.sh.
#include "support/files.h"
#include "support/test_meshes.h"
#include "tessarium/tessarium.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

using namespace qv7;
using namespace qv7::tessarium;

namespace {

// One round on data of its own: the skin of a box written as STL and OBJ and as a NASTRAN deck,
// read back (the STL reader welds it), merged again and paired. Returns a summary to compare.
std::vector<long> round(unsigned n, std::string const& tag)
{
    test_meshes::mesh m = test_meshes::box(n, 2, 2, test_meshes::TETRAS, 4);
    dense2D<double> pos;
    pos.resize(3, m.pos.size());
    for (std::size_t j = 0; j < m.pos.size(); ++j)
        for (int k = 0; k < 3; ++k) pos(k, j) = m.pos[j][k];
    dense2D<unsigned> C = m.connect(), N, skin, T3;
    std::vector<long> out;
    out.push_back(get_neighbors(C, ET_TETRA4, false, N));
    out.push_back(get_mesh_boundaries(C, N, ET_TETRA4, skin));
    std::string stl = test_files::temp_path(tag + ".stl"), obj = test_files::temp_path(tag + ".obj");
    std::string bdf = test_files::temp_path(tag + ".bdf");
    out.push_back(STL_output(stl.c_str(), pos, skin, true));
    out.push_back(WavefrontOBJ_output(obj.c_str(), pos, skin, ET_FACE_T3));
    out.push_back(NASTRAN_output(bdf.c_str(), pos, C, ET_TETRA4));
    dense2D<double> read_pos;
    out.push_back(STL_input(stl.c_str(), read_pos, T3));
    out.push_back(long(read_pos.cols()));
    element_type FE = ET_NONE;
    out.push_back(NASTRAN_input(bdf.c_str(), read_pos, C, FE));
    out.push_back(merge(read_pos, C, 1e-9, 0));
    out.push_back(get_neighbors(T3, ET_FACE_T3, false, N));
    for (std::size_t k = 0; k < N.size(); ++k) out.push_back(N.data()[k]);
    return out;
}

}  // namespace

TEST(Concurrency, SeparateDataSideBySide)
{
    constexpr unsigned threads = 4;
    std::vector<std::vector<long>> alone(threads), together(threads);
    for (unsigned t = 0; t < threads; ++t) alone[t] = round(2 + t, "alone" + std::to_string(t));
    std::vector<std::thread> pool;
    for (unsigned t = 0; t < threads; ++t)
        pool.emplace_back([&, t] { together[t] = round(2 + t, "together" + std::to_string(t)); });
    for (auto& th : pool) th.join();
    EXPECT_EQ(together, alone);
}
