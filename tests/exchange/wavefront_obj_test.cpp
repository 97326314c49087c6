#include "exchange/wavefront_obj.h"
#include "exchange_files.h"
#include "support/failing_alloc.h"
#include "tessarium/wavefront_obj.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace qv7;
using namespace qv7::tessarium;
using namespace exchange_test;

namespace {

struct obj_mesh {
    dense2D<double> pos, normals, textures;
    dense2D<unsigned> T3, Q4;
    int read(std::string const& path)
    {
        return WavefrontOBJ_input(path.c_str(), pos, normals, textures, T3, Q4);
    }
};

// A unit square split in a triangle and a quadrilateral over four nodes.
dense2D<double> square_nodes()
{
    return matrix<double>(3, {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0.5});
}

std::vector<unsigned> ids_of(char const* token)
{
    std::istringstream in(token);
    dense1D<unsigned, 8> v, t, n;
    int r = __read_id(in, v);
    if (r == 0) r = __read_id(in, t);
    if (r == 0) r = __read_id(in, n);
    std::vector<unsigned> out{static_cast<unsigned>(r)};
    for (auto* ids : {&v, &t, &n}) {
        out.push_back(static_cast<unsigned>(ids->size()));
        out.insert(out.end(), ids->begin(), ids->end());
    }
    return out;
}

}  // namespace

TEST(WavefrontOBJTokens, VertexTokenForms)
{
    // result, then each slot as its count followed by its values
    EXPECT_EQ(ids_of("7"), (std::vector<unsigned>{0, 1, 7, 0, 0}));
    EXPECT_EQ(ids_of("7/8"), (std::vector<unsigned>{0, 1, 7, 1, 8, 0}));
    EXPECT_EQ(ids_of("7//9"), (std::vector<unsigned>{0, 1, 7, 0, 1, 9}));
    EXPECT_EQ(ids_of("7/8/9"), (std::vector<unsigned>{0, 1, 7, 1, 8, 1, 9}));
    EXPECT_EQ(ids_of("7//"), (std::vector<unsigned>{0, 1, 7, 0, 0}));
    EXPECT_EQ(ids_of("7/8/"), (std::vector<unsigned>{0, 1, 7, 1, 8, 0}));
    EXPECT_EQ(ids_of("-2"), (std::vector<unsigned>{0, 1, 0xFFFFFFFEu, 0, 0}));
    // A token that starts with no number yields nothing and no error.
    EXPECT_EQ(ids_of("x/1"), (std::vector<unsigned>{0, 0, 0, 0}));
    EXPECT_EQ(ids_of("99999999999"), (std::vector<unsigned>{0, 0, 0, 0}));
    // A number followed by anything but a slash is an error.
    EXPECT_EQ(ids_of("7x")[0], static_cast<unsigned>(-2));
    EXPECT_EQ(ids_of("7/8.5")[0], static_cast<unsigned>(-2));
}

TEST(WavefrontOBJTokens, FloatsStopAtTheFirstWord)
{
    dense1D<double, 8> values;
    values.push_back(42.0);
    std::istringstream line(" 1.5 -2e3 abc 4");
    ASSERT_EQ(__WFRT_read_floats(line, values), 0);
    ASSERT_EQ(values.size(), 2u);
    EXPECT_EQ(values[0], 1.5);
    EXPECT_EQ(values[1], -2000.0);
    std::istringstream nothing("");
    nothing.get();  // at its end
    EXPECT_EQ(__WFRT_read_floats(nothing, values), -2);
    EXPECT_TRUE(values.empty());
}

TEST(WavefrontOBJOutput, NodesAndFacesWithEmptySlots)
{
    std::string path = temp_path("plain.obj");
    ASSERT_EQ(WavefrontOBJ_output(path.c_str(), square_nodes(), dense2D<double>(), dense2D<double>(),
                                  matrix<unsigned>(3, {0, 1, 2}), matrix<unsigned>(4, {0, 1, 2, 3})),
              0);
    EXPECT_EQ(read_file(path),
              " v 0.00000000e+00 0.00000000e+00 0.00000000e+00 \n"
              " v 1.00000000e+00 0.00000000e+00 0.00000000e+00 \n"
              " v 1.00000000e+00 1.00000000e+00 0.00000000e+00 \n"
              " v 0.00000000e+00 1.00000000e+00 5.00000000e-01 \n"
              " f 1// 2// 3// \n"
              " f 1// 2// 3// 4// \n");
}

TEST(WavefrontOBJOutput, TexturesAndNormalsShareTheNodeID)
{
    std::string path = temp_path("full.obj");
    dense2D<double> pos = matrix<double>(2, {-1.5e-10, 123456.789, 2, 0.1});
    dense2D<double> textures = matrix<double>(2, {0.25, 1, 0, 0.75});
    dense2D<double> normals = matrix<double>(3, {0, 0, 1, 0, 0, -1});
    ASSERT_EQ(WavefrontOBJ_output(path.c_str(), pos, normals, textures, matrix<unsigned>(3, {1, 0, 1}),
                                  dense2D<unsigned>()),
              0);
    EXPECT_EQ(read_file(path),
              " v -1.50000000e-10 1.23456789e+05 0.00000000e+00 \n"
              " v 2.00000000e+00 1.00000000e-01 0.00000000e+00 \n"
              " vt 2.50000000e-01 1.00000000e+00 \n"
              " vt 0.00000000e+00 7.50000000e-01 \n"
              " vn 0.00000000e+00 0.00000000e+00 1.00000000e+00 \n"
              " vn 0.00000000e+00 0.00000000e+00 -1.00000000e+00 \n"
              " f 2/2/2 1/1/1 2/2/2 \n");
}

TEST(WavefrontOBJOutput, RefusalsInOrderLeaveAnEmptyFile)
{
    dense2D<double> pos = square_nodes(), none;
    dense2D<unsigned> T3 = matrix<unsigned>(3, {0, 1, 2}), Q4 = matrix<unsigned>(4, {0, 1, 2, 3}), no;
    EXPECT_EQ(WavefrontOBJ_output(unopenable().c_str(), dense2D<double>(), none, none, no, no), -1);

    struct refusal {
        int code;
        dense2D<double> pos, normals, textures;
        dense2D<unsigned> T3, Q4;
    };
    std::vector<refusal> cases = {
        {-2, dense2D<double>(), none, none, no, no},
        {-2, matrix<double>(4, {0, 0, 0, 0}), none, none, no, no},
        {-3, pos, matrix<double>(3, {0, 0, 1, 0, 0, 1, 0, 0, 1}), none, T3, Q4},
        {-3, pos, matrix<double>(2, {0, 0, 0, 0, 0, 0, 0, 0}), none, T3, Q4},
        {-4, pos, none, matrix<double>(3, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}), T3, Q4},
        {-4, pos, none, matrix<double>(2, {0, 0}), T3, Q4},
        {-5, pos, none, none, Q4, Q4},
        {-6, pos, none, none, T3, T3},
    };
    for (auto const& c : cases) {
        std::string path = write_file("refused.obj", "old contents");
        EXPECT_EQ(WavefrontOBJ_output(path.c_str(), c.pos, c.normals, c.textures, c.T3, c.Q4), c.code);
        EXPECT_EQ(read_file(path), "");
    }
    // Only the shape is tested, not the range of the node numbers.
    std::string path = temp_path("far.obj");
    EXPECT_EQ(WavefrontOBJ_output(path.c_str(), pos, none, none, matrix<unsigned>(3, {7, 8, 9}), no), 0);
    EXPECT_NE(read_file(path).find(" f 8// 9// 10// \n"), std::string::npos);
}

TEST(WavefrontOBJOutput, OneAndTwoConnectivityForms)
{
    dense2D<double> pos = matrix<double>(2, {0, 0, 1, 0, 1, 1, 0, 1});
    dense2D<unsigned> T3a = matrix<unsigned>(3, {0, 1, 2}), T3b = matrix<unsigned>(3, {0, 2, 3});
    dense2D<unsigned> Q4 = matrix<unsigned>(4, {0, 1, 2, 3}), E2 = matrix<unsigned>(2, {0, 1});
    std::string nodes =
        " v 0.00000000e+00 0.00000000e+00 0.00000000e+00 \n"
        " v 1.00000000e+00 0.00000000e+00 0.00000000e+00 \n"
        " v 1.00000000e+00 1.00000000e+00 0.00000000e+00 \n"
        " v 0.00000000e+00 1.00000000e+00 0.00000000e+00 \n";
    std::string path = temp_path("forms.obj");

    EXPECT_EQ(WavefrontOBJ_output(path.c_str(), pos, E2, ET_EDGE2), 0);
    EXPECT_EQ(read_file(path), nodes);
    EXPECT_EQ(WavefrontOBJ_output(path.c_str(), pos, Q4, ET_FACE_Q4), 0);
    EXPECT_EQ(read_file(path), nodes + " f 1// 2// 3// 4// \n");

    EXPECT_EQ(WavefrontOBJ_output(path.c_str(), pos, T3b, T3a, ET_FACE_T3, ET_FACE_T3), 0);
    EXPECT_EQ(read_file(path), nodes + " f 1// 3// 4// \n f 1// 2// 3// \n");
    // Each goes by its own type: the quadrilaterals follow the triangles whatever the order.
    EXPECT_EQ(WavefrontOBJ_output(path.c_str(), pos, Q4, T3a, ET_FACE_Q4, ET_FACE_T3), 0);
    EXPECT_EQ(read_file(path), nodes + " f 1// 2// 3// \n f 1// 2// 3// 4// \n");
    EXPECT_EQ(WavefrontOBJ_output(path.c_str(), pos, E2, T3a, ET_EDGE2, ET_FACE_T3), 0);
    EXPECT_EQ(read_file(path), nodes + " f 1// 2// 3// \n");
    // A quadrilateral matrix typed as triangles is refused by shape.
    EXPECT_EQ(WavefrontOBJ_output(path.c_str(), pos, Q4, ET_FACE_T3), -5);
}

TEST(WavefrontOBJInput, ReadsWhatTheWriterWrote)
{
    std::string path = temp_path("round.obj");
    dense2D<double> pos = square_nodes();
    dense2D<double> textures = matrix<double>(2, {0, 0, 1, 0, 1, 1, 0, 1});
    dense2D<double> normals = matrix<double>(3, {0, 0, 1, 0, 0, 1, 0, 0, 1, 0.6, 0, 0.8});
    dense2D<unsigned> T3 = matrix<unsigned>(3, {0, 1, 2, 2, 3, 0}), Q4 = matrix<unsigned>(4, {3, 2, 1, 0});
    ASSERT_EQ(WavefrontOBJ_output(path.c_str(), pos, normals, textures, T3, Q4), 0);
    obj_mesh in;
    ASSERT_EQ(in.read(path), 0);
    ASSERT_EQ(in.pos.rows(), 3u);
    ASSERT_EQ(in.pos.cols(), 4u);
    for (std::size_t j = 0; j < 4; ++j) {
        EXPECT_EQ(column(in.pos, j), column(pos, j));
        EXPECT_EQ(column(in.textures, j), column(textures, j));
        EXPECT_EQ(column(in.normals, j), column(normals, j));
    }
    ASSERT_EQ(in.T3.cols(), 2u);
    EXPECT_EQ(column(in.T3, 1), (std::vector<unsigned>{2, 3, 0}));
    ASSERT_EQ(in.Q4.cols(), 1u);
    EXPECT_EQ(column(in.Q4, 0), (std::vector<unsigned>{3, 2, 1, 0}));
}

TEST(WavefrontOBJInput, LineRules)
{
    obj_mesh m;
    // Comments, groups, materials, unknown records and blank lines are skipped; a fourth "v"
    // value is dropped; CRLF ends lines as well.
    ASSERT_EQ(m.read(write_file("rules.obj",
                                "# comment\r\n\r\n   \no box\ng side\nusemtl red\ns off\n"
                                "v 1 2 3 0.5\r\n  v 4 5 6\nv 7 8 9 1 0 0\nl 1 2\nvt 0.5\nvt 0.25\n"
                                "f 1 2 3 4 5\nf 3 2 1 \nf 0 1 2 3\nf -1 1 2\n")),
              0);
    ASSERT_EQ(m.pos.cols(), 3u);
    EXPECT_EQ(column(m.pos, 0), (std::vector<double>{1, 2, 3}));
    EXPECT_EQ(column(m.pos, 2), (std::vector<double>{7, 8, 9}));
    // One value per "vt" line gives one row.
    ASSERT_EQ(m.textures.rows(), 1u);
    EXPECT_EQ(m.textures.cols(), 2u);
    EXPECT_TRUE(m.normals.empty());
    // The face of five is dropped; index 0 is the node count so far; -1 wraps.
    ASSERT_EQ(m.T3.cols(), 2u);
    EXPECT_EQ(column(m.T3, 0), (std::vector<unsigned>{2, 1, 0}));
    EXPECT_EQ(column(m.T3, 1), (std::vector<unsigned>{0xFFFFFFFEu, 0, 1}));
    ASSERT_EQ(m.Q4.cols(), 1u);
    EXPECT_EQ(column(m.Q4, 0), (std::vector<unsigned>{3, 0, 1, 2}));
}

TEST(WavefrontOBJInput, MalformedLinesKeepWhatCameBefore)
{
    char const* head = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";
    for (char const* tail : {"v 1 2\n", "v\n", "v \n", "vn 1 2\n", "vn 1 2 3 4\n", "vt 1 2 3 4\n",
                             "vt 1 2\nvt 1\n", "f\n", "f 1 2x 3\n", "f 1/1 2/1 3/1\n", "f 1//1 2//1 3//1\n"}) {
        obj_mesh m;
        EXPECT_EQ(m.read(write_file("bad.obj", std::string(head) + tail + "v 5 5 5\nf 1 2 3\n")), -2) << tail;
        EXPECT_EQ(m.pos.cols(), 3u) << tail;
        EXPECT_EQ(m.T3.cols(), 1u) << tail;
    }
    // Defined before use, texture and normal indices are fine.
    obj_mesh m;
    EXPECT_EQ(m.read(write_file("ok.obj", std::string(head) + "vt 0 0\nvn 0 0 1\nf 1/1/1 2/1/1 3/1/1\n")), 0);
    EXPECT_EQ(m.T3.cols(), 2u);
}

TEST(WavefrontOBJInput, LastLineWithoutLineFeed)
{
    obj_mesh m;
    // A face on the unterminated last line is lost; a vertex there is kept.
    ASSERT_EQ(m.read(write_file("cut.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\nf 3 2 1")), 0);
    EXPECT_EQ(m.T3.cols(), 1u);
    ASSERT_EQ(m.read(write_file("cutv.obj", "v 0 0 0\nv 1 0 0")), 0);
    EXPECT_EQ(m.pos.cols(), 2u);
}

TEST(WavefrontOBJInput, FailedOpenEmptiesEverything)
{
    obj_mesh m;
    m.pos = square_nodes();
    m.T3 = matrix<unsigned>(3, {0, 1, 2});
    m.textures = matrix<double>(1, {0});
    EXPECT_EQ(m.read(unopenable()), -1);
    EXPECT_TRUE(m.pos.empty());
    EXPECT_TRUE(m.T3.empty());
    EXPECT_TRUE(m.textures.empty());
    EXPECT_EQ(m.read(write_file("empty.obj", "")), 0);
    EXPECT_TRUE(m.pos.empty());
}

TEST(WavefrontOBJInput, FailedGrowthIsReported)
{
    std::string path = write_file("grow.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
    obj_mesh m;
    long before = test_alloc::live_blocks();
    int r;
    {
        test_alloc::failing_scope guard(0);
        r = m.read(path);
    }
    EXPECT_EQ(r, -199);
    m = obj_mesh();
    EXPECT_EQ(test_alloc::live_blocks(), before);
}

TEST(WavefrontOBJInput, HostileInputDoesNotCrash)
{
    obj_mesh m;
    std::string long_face = "v 0 0 0\nf";
    for (int i = 0; i < 5000; ++i) long_face += " 1/1/1";
    EXPECT_EQ(m.read(write_file("long.obj", long_face + "\n")), -2);  // textures never defined
    EXPECT_EQ(m.read(write_file("huge.obj", "v 1e999 nan inf\nv 1 1 1\nf 4294967295 2147483648 1\n")), -2);
    static char const binary[] = "v \0\xff\x01 2 3\nf \0 1 2\n";
    EXPECT_EQ(m.read(write_file("binary.obj", std::string(binary, sizeof binary - 1))), -2);
    EXPECT_EQ(m.read(write_file("wide.obj", "v 1 2 3\nf 2147483647 -2147483648 1\n")), 0);
    ASSERT_EQ(m.T3.cols(), 1u);
    EXPECT_EQ(column(m.T3, 0), (std::vector<unsigned>{2147483646u, 2147483647u, 0u}));
}

// Counts from the corpus notes, and the reader's rules: unterminated last faces are lost,
// polygons of more than four nodes are dropped.
TEST(WavefrontOBJInput, CorpusFiles)
{
    struct expected {
        char const* name;
        std::size_t nodes, normals, textures, texture_rows, T3, Q4;
    };
    std::vector<expected> files = {
        {"as_box_longline.obj", 8, 0, 0, 0, 0, 5},         {"as_concave_polygon.obj", 64, 1, 0, 0, 0, 0},
        {"as_cube_with_vertexcolors.obj", 8, 6, 0, 0, 11, 0}, {"as_testmixed.obj", 8, 0, 0, 0, 0, 6},
        {"tm_groups.obj", 1156, 1156, 0, 0, 2308, 0},      {"tm_jacked.obj", 8, 0, 8, 2, 11, 0},
        {"tm_negative_indices.obj", 8, 6, 14, 2, 0, 6},    {"tm_polygonfaces.obj", 5, 0, 0, 0, 0, 0},
        {"tm_quadknot.obj", 1440, 1440, 3, 2, 0, 1440},    {"tm_wallhole.obj", 92, 92, 92, 2, 0, 0},
    };
    if (corpus_dir("obj").empty()) GTEST_SKIP() << "no corpus on this machine";
    for (auto const& f : files) {
        std::string path = corpus_dir("obj") + f.name;
        if (!file_exists(path)) continue;
        obj_mesh m;
        ASSERT_EQ(m.read(path), 0) << f.name;
        EXPECT_EQ(m.pos.cols(), f.nodes) << f.name;
        EXPECT_EQ(m.normals.cols(), f.normals) << f.name;
        EXPECT_EQ(m.textures.cols(), f.textures) << f.name;
        EXPECT_EQ(m.textures.rows(), f.texture_rows) << f.name;
        EXPECT_EQ(m.T3.cols(), f.T3) << f.name;
        EXPECT_EQ(m.Q4.cols(), f.Q4) << f.name;
    }
    obj_mesh m;
    std::string negative = corpus_dir("obj") + "tm_negative_indices.obj";
    if (file_exists(negative) && m.read(negative) == 0 && m.Q4.cols() == 6) {
        EXPECT_EQ(column(m.Q4, 0), (std::vector<unsigned>{0xFFFFFFF7u, 0xFFFFFFFBu, 0xFFFFFFFDu, 0xFFFFFFF9u}));
    }
}
