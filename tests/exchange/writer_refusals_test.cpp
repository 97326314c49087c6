// What the five mesh writers refuse, in which order, what each leaves on disk, and how each fails
// when memory runs out.
#include "exchange_files.h"
#include "support/failing_alloc.h"
#include "tessarium/tessarium.h"

#include <gtest/gtest.h>

#include <functional>

using namespace qv7;
using namespace qv7::tessarium;
using namespace exchange_test;

namespace {

constexpr unsigned N = NONE_ID;

using range_writer = int (*)(char const*, dense2D<double> const&, dense2D<unsigned> const*, dense2D<unsigned> const*,
                             dense1D<int, 8> const&);
using grouped_writer = int (*)(char const*, dense2D<double> const&, dense2D<unsigned> const&,
                               dense1D<unsigned, 8> const&, dense1D<int, 8> const&, dense1D<unsigned, 8> const&);

struct range_call {
    char const* what;
    dense2D<double> pos;
    std::vector<dense2D<unsigned>> groups;
    std::vector<int> FEs;
    bool reversed;  // last before first
    int codes[3];   // Medit, VTK, EnSight
};

struct grouped_call {
    std::size_t pos_rows, rows;
    std::vector<unsigned> indices;
    std::vector<int> FEs;
    std::size_t per_element;
    int code;
};

}  // namespace

TEST(WriterRefusals, RangeFormsInTheirOrderAndTheFilesTheyLeave)
{
    dense2D<double> pos = coords(3, {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1});
    dense2D<unsigned> tet = connect(4, {0, 1, 2, 3});
    range_call const calls[] = {
        {"pos of 4 rows", coords(4, {0, 0, 0, 0}), {tet}, {ET_TETRA4}, false, {-2, -2, -2}},
        {"pos is checked first", dense2D<double>(), {tet}, {}, true, {-2, -2, -2}},
        {"pos of 1 row", coords(1, {0, 1, 2, 3}), {tet}, {ET_TETRA4}, false, {0, -2, 0}},
        {"the range before the types", pos, {tet}, {}, true, {-4, -4, -4}},
        {"no type for the group", pos, {tet}, {}, false, {-5, -5, -5}},
        {"node 3 of two nodes", coords(3, {0, 0, 0, 1, 0, 0}), {tet}, {ET_TETRA4}, false, {-3, -3, 0}},
        {"shape of another type", pos, {tet, counting(9)}, {ET_TETRA4, ET_HEXA8}, false, {-3, -3, -3}},
        {"no such type", pos, {tet, tet}, {ET_TETRA4, 40}, false, {-3, -3, -3}},
        {"mixed solid of 7 nodes", pos, {connect(8, {0, 1, 2, 3, 0, 1, 2, N})}, {ET_SOLID_MIX}, false, {-3, -3, 0}},
        {"gap in a mixed solid", pos, {connect(8, {0, 1, N, 3, N, N, N, N})}, {ET_SOLID_MIX}, false, {-3, -3, 0}},
        {"mixed face of 5 rows", pos, {connect(5, {0, 1, 2, 3, 0})}, {ET_FACE_MIX}, false, {-3, -3, -3}},
        {"no VTK cell",
         pos,
         {tet, connect(13, {0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3, 0})},
         {ET_TETRA4, ET_PYRAMID13},
         false,
         {0, -2, 0}},
        {"a node", pos, {connect(1, {2})}, {ET_NODE}, false, {0, -2, 0}},
    };
    range_writer const writers[] = {medit_output, vtk_output, ensight_output};
    for (range_call const& c : calls) {
        dense2D<unsigned> const *first = c.groups.data(), *last = first + c.groups.size();
        if (c.reversed) std::swap(first, last);
        for (int w = 0; w < 3; ++w) {
            std::string path = temp_path("refused_" + std::to_string(w));
            EXPECT_EQ(writers[w](path.c_str(), c.pos, first, last, list(c.FEs)), c.codes[w]) << c.what << ", " << w;
            // Medit checks before it opens the file, the others after.
            if (c.codes[w] != 0) {
                EXPECT_EQ(exists(path) ? contents(path) : "none", w == 0 ? "none" : "") << c.what;
            }
        }
    }
    dense1D<int, 8> tet_type(1, ET_TETRA4);
    for (range_writer write : writers) EXPECT_EQ(write(unwritable_path().c_str(), pos, &tet, &tet + 1, tet_type), -1);
}

TEST(WriterRefusals, GroupedFormsInOneOrderLeaveAnEmptyFile)
{
    grouped_call const calls[] = {
        {1, 3, {0, 1}, {}, 2, -2},                     // pos is checked first
        {3, 3, {0, 1}, {ET_FACE_T3, ET_NODE}, 2, -5},  // then FEs against indices
        {3, 3, {0, 1}, {ET_FACE_T3}, 2, -6},           // then one value per column
        {3, 3, {0, 2}, {ET_FACE_T3}, 1, -4},           // a group past the columns
        {3, 3, {0, 1}, {ET_TETRA4}, 1, -3},            // more rows than the matrix has
        {3, 3, {0, 1}, {99}, 1, -3},                   // no such type
        {3, 7, {0, 1}, {ET_SOLID_MIX}, 1, -3},         // a mixed solid of 7 rows
    };
    std::string path = temp_path("grouped_refused.out");
    for (grouped_writer write : {grouped_writer(NASTRAN_output), grouped_writer(FEMAP_output)}) {
        for (grouped_call const& c : calls) {
            dense2D<double> pos = points(3).submatrix(0, 3, c.pos_rows);
            std::vector<unsigned> per(c.per_element, 1u);
            EXPECT_EQ(write(path.c_str(), pos, counting(c.rows), list(c.indices), list(c.FEs), list(per)), c.code);
            EXPECT_EQ(contents(path), "");
        }
        EXPECT_EQ(write(unwritable_path().c_str(), points(3), counting(3), list<unsigned>({0, 1}),
                        list<int>({ET_FACE_T3}), list<unsigned>({1})),
                  -1);
    }
    // Nothing to write: NASTRAN makes no file, FEMAP empties the one it opens first.
    std::string nothing = temp_path("nothing.out");
    EXPECT_EQ(NASTRAN_output(nothing.c_str(), points(4).submatrix(0, 1, 1), dense2D<unsigned>(), ET_FACE_T3), 0);
    EXPECT_FALSE(exists(nothing));
    std::ofstream(nothing) << "old";
    EXPECT_EQ(FEMAP_output(nothing.c_str(), points(3).submatrix(0, 3, 1), dense2D<unsigned>(), ET_FACE_T3), 0);
    EXPECT_EQ(contents(nothing), "");
}

TEST(WriterRefusals, EveryFailedAllocationGivesMinus199AndLeaksNothing)
{
    dense2D<double> pos = cube_and_apex();
    dense2D<unsigned> solids = mixed_solids(), faces = mixed_faces();
    std::vector<std::function<int(char const*)>> const writes = {
        [&](char const* p) { return medit_output(p, pos, solids, ET_SOLID_MIX); },
        [&](char const* p) { return medit_output(p, pos, solids, faces, ET_SOLID_MIX, ET_FACE_MIX); },
        [&](char const* p) { return vtk_output(p, pos, solids, ET_SOLID_MIX); },
        [&](char const* p) { return vtk_output(p, pos, solids, faces, ET_SOLID_MIX, ET_FACE_MIX); },
        [&](char const* p) { return ensight_output(p, pos, faces, ET_FACE_MIX); },
        [&](char const* p) { return ensight_output(p, pos, solids, faces, ET_SOLID_MIX, ET_FACE_MIX); },
        [&](char const* p) { return NASTRAN_output(p, pos, solids, ET_SOLID_MIX); },
        [&](char const* p) { return NASTRAN_output(p, pos, solids, faces, ET_SOLID_MIX, ET_FACE_MIX); },
        [&](char const* p) { return FEMAP_output(p, pos, faces, ET_FACE_MIX); },
        [&](char const* p) { return FEMAP_output(p, pos, solids, faces, ET_SOLID_MIX, ET_FACE_MIX); },
    };
    std::string path = temp_path("failing.out");
    long blocks = test_alloc::live_blocks();
    for (auto const& write : writes) {
        EXPECT_GT(failed_runs_before_success([&] { return write(path.c_str()); }), 0u);
        EXPECT_EQ(test_alloc::live_blocks(), blocks);
    }
}
