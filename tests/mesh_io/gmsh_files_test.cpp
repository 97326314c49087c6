// Files that gmsh writes, read by read_mesh with the counts and coordinates gmsh holds: decks
// without BEGIN BULK in each field form, with left-justified IDs, and Medit meshes.
#include "../exchange/exchange_files.h"
#include "tessarium/mesh.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace qv7;
using namespace qv7::tessarium;

TEST(GmshFiles, ReadWithGmshCounts)
{
    struct file {
        char const* name;
        char const* form;
    };
    for (file f : std::vector<file>{
             {"gmsh_free.bdf", "0"}, {"gmsh_small.bdf", "1"}, {"gmsh_large.bdf", "2"}, {"gmsh.mesh", "-"}}) {
        std::string path = exchange_test::temp_path(f.name);
        std::map<std::string, long> gmsh;
        if (!exchange_test::run_read_script("tests/mesh_io/write_with_gmsh.py", f.form, path, gmsh))
            GTEST_SKIP() << "no gmsh for /usr/bin/python3";
        mesh m;
        io_report r = read_mesh(path, m);
        ASSERT_TRUE(r) << r.message;
        std::array<std::size_t, nbr_element_types> counts = count_by_type(m);
        EXPECT_EQ(long(m.nbr_nodes()), gmsh["nodes"]) << f.name;
        EXPECT_EQ(long(counts[ET_EDGE2]), gmsh["edges"]) << f.name;
        EXPECT_EQ(long(counts[ET_FACE_T3]), gmsh["triangles"]) << f.name;
        EXPECT_EQ(long(counts[ET_TETRA4]), gmsh["tetrahedra"]) << f.name;
        double sum = 0.0;
        for (std::size_t j = 0; j < m.nbr_nodes(); ++j) sum += m.pos(0, j) + m.pos(1, j) + m.pos(2, j);
        // Small fields keep 8 characters of each coordinate.
        EXPECT_NEAR(1000 * sum, double(gmsh["coordinates_sum_x1000"]), 1e-4 * 1000 * std::fabs(sum) + 1) << f.name;
    }
}
