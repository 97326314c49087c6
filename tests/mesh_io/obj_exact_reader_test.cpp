// Wavefront OBJ files read by read_mesh: polygons of any size, relative indices, groups, lines,
// continued lines, a last line without its line feed; the files of other software counted.
#include "../exchange/exchange_files.h"
#include "tessarium/mesh.h"

#include <gtest/gtest.h>

#include <dirent.h>
#include <fstream>
#include <sstream>

using namespace qv7;
using namespace qv7::tessarium;

namespace {

std::vector<std::vector<unsigned>> columns(mesh const& m, element_type type,
                                           std::vector<unsigned>* references = nullptr)
{
    std::vector<std::vector<unsigned>> all;
    for (element_block const& b : m.blocks) {
        if (b.type != type) continue;
        for (std::size_t e = 0; e < b.connect.cols(); ++e) {
            all.emplace_back(b.connect.col(e), b.connect.col(e) + b.connect.rows());
            if (references) references->push_back(b.references.empty() ? 0u : b.references[e]);
        }
    }
    return all;
}

}  // namespace

TEST(ObjExact, PolygonsRelativeIndicesGroupsAndLastLine)
{
    std::string path = exchange_test::write_file(
        "exact.obj",
        "# five vertices\r\nv 0 0 0\r\nv 1 0 0 0.5 0.5 0.5\nv 1 1 0\nv 0 1 0\nv 0.5 1.5 0\n"
        "o part\nf 1 2 3 4 5\ng side\nf -5 -4 \\\n -3\nl 1 2 3\ng\nf 1/1 3//2 4/2/2 6\nv 9 9 9\n"
        "usemtl red\nf 1 2 3 4");
    mesh m;
    io_report r = read_mesh(path, m);
    ASSERT_TRUE(r) << r.message;
    ASSERT_EQ(m.nbr_nodes(), 6u);
    EXPECT_EQ(m.pos(0, 5), 9.0);
    EXPECT_EQ(m.pos(2, 1), 0.0);  // the colour after the coordinates left out
    std::vector<unsigned> groups;
    EXPECT_EQ(columns(m, ET_FACE_T3, &groups),
              (std::vector<std::vector<unsigned>>{{0, 1, 2}, {0, 2, 3}, {0, 3, 4}, {0, 1, 2}}));
    EXPECT_EQ(groups, (std::vector<unsigned>{1, 1, 1, 2}));  // "part", then "side"
    groups.clear();
    EXPECT_EQ(columns(m, ET_FACE_Q4, &groups), (std::vector<std::vector<unsigned>>{{0, 2, 3, 5}, {0, 1, 2, 3}}));
    EXPECT_EQ(groups, (std::vector<unsigned>{0, 0}));  // a "g" without a name ends the group
    EXPECT_EQ(columns(m, ET_EDGE2), (std::vector<std::vector<unsigned>>{{0, 1}, {1, 2}}));
    ASSERT_EQ(r.passed_over.size(), 2u);
    EXPECT_EQ(r.passed_over[0].what, "faces of more than 4 vertices, cut into fans of triangles");
    EXPECT_EQ(r.passed_over[1].what, "\"usemtl\" lines");
}

// Elements from the face and line sizes alone, against what was read; one relative face by hand.
TEST(ObjExact, FilesOfOtherSoftwareCounted)
{
    std::string folder = exchange_test::corpus_dir("obj");
    if (folder.empty()) GTEST_SKIP() << "no files of other software on this machine";
    DIR* dir = opendir(folder.c_str());
    ASSERT_NE(dir, nullptr);
    std::size_t files = 0;
    while (dirent* entry = readdir(dir)) {
        std::string name = entry->d_name;
        if (name.size() < 4 || name.substr(name.size() - 4) != ".obj") continue;
        std::ifstream in(folder + name);
        std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>()), joined;
        std::size_t vertices = 0, triangles = 0, quadrangles = 0, edges = 0;
        for (std::size_t at; (at = text.find("\\\r\n")) != std::string::npos;) text.erase(at, 3);
        for (std::size_t at; (at = text.find("\\\n")) != std::string::npos;) text.erase(at, 2);
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            std::istringstream words(line);
            std::string keyword, word;
            words >> keyword;
            std::size_t n = 0;
            while (words >> word) ++n;
            vertices += keyword == "v";
            if (keyword == "f") (n == 4 ? quadrangles : triangles) += n == 4 ? 1 : n - 2;
            if (keyword == "l") edges += n - 1;
        }
        mesh m;
        io_report r = read_mesh(folder + name, m);
        ASSERT_TRUE(r) << r.message;
        EXPECT_EQ(m.nbr_nodes(), vertices) << name;
        EXPECT_EQ(columns(m, ET_FACE_T3).size(), triangles) << name;
        EXPECT_EQ(columns(m, ET_FACE_Q4).size(), quadrangles) << name;
        EXPECT_EQ(columns(m, ET_EDGE2).size(), edges) << name;
        if (name == "tm_negative_indices.obj") {
            // "f -8/-13/-6 -4/-12/-6 -2/-12/-6 -6/-11/-6" after 8 vertices
            EXPECT_EQ(columns(m, ET_FACE_Q4)[0], (std::vector<unsigned>{0, 4, 6, 2}));
        }
        ++files;
    }
    closedir(dir);
    EXPECT_EQ(files, 10u);
}
