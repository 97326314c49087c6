#include "exchange/wavefront_obj.h"
#include "exchange_files.h"
#include "support/failing_alloc.h"
#include "tessarium/wavefront_obj.h"

#include <gtest/gtest.h>

using namespace qv7;
using namespace qv7::tessarium;
using namespace exchange_test;

namespace {

struct obj_mesh {
    dense2D<double> pos, normals, textures;
    dense2D<unsigned> T3, Q4;
    int read(std::string const& path) { return WavefrontOBJ_input(path.c_str(), pos, normals, textures, T3, Q4); }
};

// Result, then for each slot its count and values.
std::vector<unsigned> slots_of(char const* token)
{
    std::istringstream in(token);
    dense1D<unsigned, 8> ids[3];
    int r = 0;
    for (int k = 0; k < 3 && r == 0; ++k) r = __read_id(in, ids[k]);
    std::vector<unsigned> out{static_cast<unsigned>(r)};
    for (auto const& s : ids) {
        out.push_back(static_cast<unsigned>(s.size()));
        out.insert(out.end(), s.begin(), s.end());
    }
    return out;
}

std::string const nodes_2x2 =
    " v 0.00000000e+00 0.00000000e+00 0.00000000e+00 \n"
    " v 1.00000000e+00 0.00000000e+00 0.00000000e+00 \n"
    " v 1.00000000e+00 1.00000000e+00 0.00000000e+00 \n"
    " v 0.00000000e+00 1.00000000e+00 5.00000000e-01 \n";

}  // namespace

TEST(WavefrontOBJ, VertexTokenForms)
{
    using v = std::vector<unsigned>;
    EXPECT_EQ(slots_of("7"), (v{0, 1, 7, 0, 0}));
    EXPECT_EQ(slots_of("7/8"), (v{0, 1, 7, 1, 8, 0}));
    EXPECT_EQ(slots_of("7//9"), (v{0, 1, 7, 0, 1, 9}));
    EXPECT_EQ(slots_of("7/8/9"), (v{0, 1, 7, 1, 8, 1, 9}));
    EXPECT_EQ(slots_of("7/8/"), (v{0, 1, 7, 1, 8, 0}));
    EXPECT_EQ(slots_of("-2"), (v{0, 1, 0xFFFFFFFEu, 0, 0}));
    EXPECT_EQ(slots_of("x/1"), (v{0, 0, 0, 0}));          // no number first: nothing, no error
    EXPECT_EQ(slots_of("99999999999"), (v{0, 0, 0, 0}));  // beyond int
    EXPECT_EQ(slots_of("7x")[0], unsigned(-2));
    EXPECT_EQ(slots_of("7/8.5")[0], unsigned(-2));
}

TEST(WavefrontOBJ, WriterForms)
{
    std::string path = temp_path("w.obj");
    dense2D<double> pos = matrix<double>(3, {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0.5}), none;
    dense2D<unsigned> T3 = matrix<unsigned>(3, {0, 1, 2}), T3b = matrix<unsigned>(3, {0, 2, 3}),
                      Q4 = matrix<unsigned>(4, {0, 1, 2, 3}), E2 = matrix<unsigned>(2, {0, 1});
    ASSERT_EQ(WavefrontOBJ_output(path.c_str(), pos, none, none, T3, Q4), 0);
    EXPECT_EQ(contents(path), nodes_2x2 + " f 1// 2// 3// \n f 1// 2// 3// 4// \n");
    EXPECT_EQ(WavefrontOBJ_output(path.c_str(), pos, E2, ET_EDGE2), 0);
    EXPECT_EQ(contents(path), nodes_2x2);
    EXPECT_EQ(WavefrontOBJ_output(path.c_str(), pos, T3b, T3, ET_FACE_T3, ET_FACE_T3), 0);
    EXPECT_EQ(contents(path), nodes_2x2 + " f 1// 3// 4// \n f 1// 2// 3// \n");
    // Each matrix goes by its own type: quadrilaterals follow triangles whatever the order.
    EXPECT_EQ(WavefrontOBJ_output(path.c_str(), pos, Q4, T3, ET_FACE_Q4, ET_FACE_T3), 0);
    EXPECT_EQ(contents(path), nodes_2x2 + " f 1// 2// 3// \n f 1// 2// 3// 4// \n");

    // A 2-row pos gets z = 0; textures and normals share the node's ID.
    ASSERT_EQ(WavefrontOBJ_output(path.c_str(), matrix<double>(2, {-1.5e-10, 123456.789, 2, 0.1}),
                                  matrix<double>(3, {0, 0, 1, 0, 0, -1}), matrix<double>(2, {0.25, 1, 0, 0.75}),
                                  matrix<unsigned>(3, {1, 0, 1}), dense2D<unsigned>()),
              0);
    EXPECT_EQ(contents(path),
              " v -1.50000000e-10 1.23456789e+05 0.00000000e+00 \n"
              " v 2.00000000e+00 1.00000000e-01 0.00000000e+00 \n"
              " vt 2.50000000e-01 1.00000000e+00 \n vt 0.00000000e+00 7.50000000e-01 \n"
              " vn 0.00000000e+00 0.00000000e+00 1.00000000e+00 \n"
              " vn 0.00000000e+00 0.00000000e+00 -1.00000000e+00 \n"
              " f 2/2/2 1/1/1 2/2/2 \n");
}

TEST(WavefrontOBJ, WriterRefusalsLeaveAnEmptyFile)
{
    dense2D<double> pos = matrix<double>(3, {0, 0, 0, 1, 0, 0}), none;
    dense2D<unsigned> T3 = matrix<unsigned>(3, {0, 1, 1}), Q4 = matrix<unsigned>(4, {0, 1, 1, 0}), no;
    EXPECT_EQ(WavefrontOBJ_output(unwritable_path().c_str(), pos, none, none, no, no), -1);
    struct refusal {
        int code;
        dense2D<double> pos, normals, textures;
        dense2D<unsigned> T3, Q4;
    };
    for (auto const& c : std::vector<refusal>{{-2, none, none, none, no, no},
                                              {-2, matrix<double>(4, {0, 0, 0, 0}), none, none, no, no},
                                              {-3, pos, matrix<double>(3, {0, 0, 1}), none, T3, Q4},
                                              {-4, pos, none, matrix<double>(3, {0, 0, 0, 0, 0, 0}), T3, Q4},
                                              {-5, pos, none, none, Q4, Q4},
                                              {-6, pos, none, none, T3, T3}}) {
        std::string path = write_file("refused.obj", "old contents");
        EXPECT_EQ(WavefrontOBJ_output(path.c_str(), c.pos, c.normals, c.textures, c.T3, c.Q4), c.code);
        EXPECT_EQ(contents(path), "");
    }
}

TEST(WavefrontOBJ, ReaderRules)
{
    obj_mesh m;
    // Written lines begin with a blank; comments, groups, unknown records and blank lines are
    // skipped; a fourth "v" value and vertex colours are dropped; CRLF ends lines too. The face of
    // five is dropped, index 0 is the node count so far, -1 wraps.
    ASSERT_EQ(m.read(write_file("rules.obj",
                                "# c\r\n\r\no box\ng side\nusemtl red\nv 1 2 3 0.5\r\n v 4 5 6\n"
                                "v 7 8 9 1 0 0\nl 1 2\nvt 0.5\nvt 0.25\nvn 0 0 1\n"
                                "f 1 2 3 4 5\nf 3/1 2/2 1/1 \nf 0 1//1 2 3\nf -1 1 2\n")),
              0);
    ASSERT_EQ(m.pos.cols(), 3u);
    EXPECT_EQ(column(m.pos, 2), (std::vector<double>{7, 8, 9}));
    EXPECT_EQ(m.textures.rows(), 1u);  // one value per "vt" line
    EXPECT_EQ(m.textures.cols(), 2u);
    EXPECT_EQ(m.normals.cols(), 1u);
    ASSERT_EQ(m.T3.cols(), 2u);
    EXPECT_EQ(column(m.T3, 0), (std::vector<unsigned>{2, 1, 0}));
    EXPECT_EQ(column(m.T3, 1), (std::vector<unsigned>{0xFFFFFFFEu, 0, 1}));
    ASSERT_EQ(m.Q4.cols(), 1u);
    EXPECT_EQ(column(m.Q4, 0), (std::vector<unsigned>{3, 0, 1, 2}));

    // A face on an unterminated last line is lost, a vertex there is kept.
    ASSERT_EQ(m.read(write_file("cut.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\nf 3 2 1")), 0);
    EXPECT_EQ(m.T3.cols(), 1u);
    ASSERT_EQ(m.read(write_file("cutv.obj", "v 0 0 0\nv 1 0 0")), 0);
    EXPECT_EQ(m.pos.cols(), 2u);
}

TEST(WavefrontOBJ, ReaderFailures)
{
    char const* head = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";
    for (char const* tail : {"v 1 2\n", "v\n", "v 1e999 0 0\n", "vn 1 2\n", "vn 1 2 3 4\n", "vt 1 2 3 4\n",
                             "vt 1 2\nvt 1\n", "f\n", "f 1 2x 3\n", "f 1/1 2/1 3/1\n", "f 1//1 2//1 3//1\n"}) {
        obj_mesh m;
        EXPECT_EQ(m.read(write_file("bad.obj", std::string(head) + tail + "v 5 5 5\nf 1 2 3\n")), -2) << tail;
        EXPECT_EQ(m.pos.cols(), 3u) << tail;  // what came before stays
        EXPECT_EQ(m.T3.cols(), 1u) << tail;
    }
    obj_mesh m;
    m.T3 = matrix<unsigned>(3, {0, 1, 2});
    EXPECT_EQ(m.read(unwritable_path()), -1);
    EXPECT_TRUE(m.T3.empty());
    m = obj_mesh();
    long before = test_alloc::live_blocks();
    {
        test_alloc::failing_scope guard(0);
        EXPECT_EQ(m.read(write_file("grow.obj", head)), -199);
    }
    m = obj_mesh();
    EXPECT_EQ(test_alloc::live_blocks(), before);
}

// Counts from the corpus notes and the reader's rules: unterminated last faces are lost,
// polygons of more than four nodes dropped.
TEST(WavefrontOBJ, CorpusFiles)
{
    struct expected {
        char const* name;
        std::size_t nodes, normals, textures, texture_rows, T3, Q4;
    };
    if (corpus_dir("obj").empty()) GTEST_SKIP() << "no corpus on this machine";
    for (auto const& f : std::vector<expected>{{"as_box_longline.obj", 8, 0, 0, 0, 0, 5},
                                               {"as_concave_polygon.obj", 64, 1, 0, 0, 0, 0},
                                               {"as_cube_with_vertexcolors.obj", 8, 6, 0, 0, 11, 0},
                                               {"as_testmixed.obj", 8, 0, 0, 0, 0, 6},
                                               {"tm_groups.obj", 1156, 1156, 0, 0, 2308, 0},
                                               {"tm_jacked.obj", 8, 0, 8, 2, 11, 0},
                                               {"tm_negative_indices.obj", 8, 6, 14, 2, 0, 6},
                                               {"tm_polygonfaces.obj", 5, 0, 0, 0, 0, 0},
                                               {"tm_quadknot.obj", 1440, 1440, 3, 2, 0, 1440},
                                               {"tm_wallhole.obj", 92, 92, 92, 2, 0, 0}}) {
        std::string path = corpus_dir("obj") + f.name;
        if (!exists(path)) continue;
        obj_mesh m;
        ASSERT_EQ(m.read(path), 0) << f.name;
        EXPECT_EQ((std::vector<std::size_t>{m.pos.cols(), m.normals.cols(), m.textures.cols(), m.textures.rows(),
                                            m.T3.cols(), m.Q4.cols()}),
                  (std::vector<std::size_t>{f.nodes, f.normals, f.textures, f.texture_rows, f.T3, f.Q4}))
            << f.name;
    }
}
