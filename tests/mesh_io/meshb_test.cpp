// Binary Medit meshes built byte by byte from the format's rules, and Medit solutions read as the
// node fields of a mesh.
#include "../exchange/exchange_files.h"
#include "mesh_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

using namespace mesh_io_test;
using exchange_test::temp_path;
using exchange_test::write_file;

namespace {

// The bytes of v, reversed when `swap`.
template <class T>
std::string bytes(T v, bool swap)
{
    std::string b(sizeof v, '\0');
    std::memcpy(&b[0], &v, sizeof v);
    if (swap) std::reverse(b.begin(), b.end());
    return b;
}

std::vector<double> row(mesh_field const& f, std::size_t i)
{
    std::vector<double> v;
    for (std::size_t j = 0; j < f.values.cols(); ++j) v.push_back(f.values(i, j));
    return v;
}

}  // namespace

// Version 1 in the other byte order (32-bit floats and offsets), version 4 (64-bit integers and
// offsets): three vertices and one triangle of reference 9, with an unknown keyword passed over.
TEST(MeditBinary, VersionsAndByteOrders)
{
    for (int version : {1, 4}) {
        bool swap = version == 1, wide = version == 4;
        auto integer = [&](std::int64_t v) { return wide ? bytes(v, swap) : bytes(std::int32_t(v), swap); };
        auto real = [&](double v) { return version == 1 ? bytes(float(v), swap) : bytes(v, swap); };
        std::string file = bytes(std::int32_t(1), swap) + bytes(std::int32_t(version), swap);
        auto keyword = [&](std::int32_t code, std::string const& data) {
            std::size_t next = file.size() + 4 + (version >= 3 ? 8 : 4) + data.size();
            file += bytes(code, swap) +
                    (version >= 3 ? bytes(std::int64_t(next), swap) : bytes(std::int32_t(next), swap)) + data;
        };
        keyword(3, bytes(std::int32_t(3), swap));
        keyword(99, std::string(13, 'x'));
        std::string vertices = integer(3);
        for (int j = 0; j < 3; ++j) vertices += real(j == 1) + real(j == 2 ? 1.25 : 0.0) + real(0.5) + integer(0);
        keyword(4, vertices);
        keyword(6, integer(1) + integer(1) + integer(2) + integer(3) + integer(9));
        file += bytes(std::int32_t(54), swap);
        std::string path = write_file("v" + std::to_string(version) + ".meshb", file);
        mesh m;
        io_report r = read_mesh(path, m);
        ASSERT_TRUE(r) << r.message;
        ASSERT_EQ(m.nbr_nodes(), 3u);
        EXPECT_EQ(m.pos(1, 2), 1.25);
        ASSERT_EQ(m.blocks.size(), 1u);
        EXPECT_EQ(m.blocks[0].type, ET_FACE_T3);
        EXPECT_EQ(m.blocks[0].connect(2, 0), 2u);
        EXPECT_EQ(m.blocks[0].references[0], 9u);
        ASSERT_EQ(r.passed_over.size(), 1u);
        EXPECT_EQ(r.passed_over[0].what, "Medit keywords numbered 99");
    }
}

// A scalar, a vector and a symmetric tensor in 2D: 1, 2 and 3 rows.
TEST(MeditBinary, SolutionsAsNodeFields)
{
    mesh m;
    m.pos = exchange_test::coords(2, {0, 0, 1, 0});
    std::string sol = write_file("kinds.sol",
                                 "MeshVersionFormatted 2\nDimension 2\n# sizes\nSolAtVertices\n2\n3 1 2 3\n"
                                 "0.5 1 2 3 4 5\n0.25 6 7 8 9 10\nEnd\n");
    io_report r = read_fields(sol, m);
    ASSERT_TRUE(r) << r.message;
    ASSERT_EQ(m.node_fields.size(), 3u);
    EXPECT_EQ(m.node_fields[0].name, "sol1");
    EXPECT_EQ(row(m.node_fields[0], 0), (std::vector<double>{0.5, 0.25}));
    EXPECT_EQ(row(m.node_fields[1], 1), (std::vector<double>{2, 7}));
    EXPECT_EQ(row(m.node_fields[2], 2), (std::vector<double>{5, 10}));

    // The binary form written beside a .meshb, back to the bit.
    m.node_fields.resize(2);
    m.node_fields[1].values(0, 1) = 1.0 / 3.0;
    std::string path = temp_path("fields.meshb");
    ASSERT_TRUE(write_mesh(path, m));
    mesh back;
    ASSERT_TRUE(read_mesh(path, back));
    r = read_fields(path.substr(0, path.size() - 6) + ".solb", back);
    ASSERT_TRUE(r) << r.message;
    ASSERT_EQ(back.node_fields.size(), 2u);
    EXPECT_EQ(row(back.node_fields[1], 0), row(m.node_fields[1], 0));

    // A solution of another node count, a solution given as a mesh.
    back.pos = exchange_test::coords(2, {0, 0, 1, 0, 2, 0});
    r = read_fields(sol, back);
    EXPECT_EQ(r.code, io_malformed);
    EXPECT_NE(r.message.find("holds values at 2 vertices for a mesh of 3 nodes"), std::string::npos) << r.message;
    EXPECT_EQ(back.node_fields.size(), 2u);
    EXPECT_EQ(read_mesh(sol, back).code, io_unsupported);
}
