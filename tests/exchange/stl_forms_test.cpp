#include "exchange/stl_soup.h"
#include "exchange_files.h"
#include "support/failing_alloc.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdint>

using namespace qv7;
using namespace qv7::tessarium;
using namespace exchange_test;

namespace {

struct soup_read {
    int code;
    dense2D<double> pos;
    double min_sqr_height;
};

soup_read read_form(int (*form)(std::FILE*, __STL_soup&), std::string const& bytes)
{
    std::string path = write_file("form.stl", bytes);
    std::FILE* file = std::fopen(path.c_str(), "rb");
    soup_read out{0, {}, 0.0};
    __STL_soup soup(out.pos);
    out.code = form(file, soup);
    out.min_sqr_height = soup.close();
    std::fclose(file);
    return out;
}

soup_read text(std::string const& bytes) { return read_form(__STL_read_text, bytes); }
soup_read binary(std::string const& bytes) { return read_form(__STL_read_binary, bytes); }

std::string facet(char const* a, char const* b, char const* c)
{
    return std::string(" facet normal 0 0 1\n  outer loop\n   vertex ") + a + "\n   vertex " + b + "\n   vertex " + c +
           "\n  endloop\n endfacet\n";
}

// The right triangle with legs 4 and 3: its smallest squared height is 12^2 / 5^2.
std::string const right_facet = facet("0 0 0", "4 0 0", "0 3 0");

std::string binary_file(std::int32_t count, std::vector<std::vector<float>> const& facets, char const* header = "")
{
    std::string bytes(80, '\0');
    bytes.replace(0, std::strlen(header), header);
    bytes.append(reinterpret_cast<char const*>(&count), 4);
    for (auto const& f : facets) {
        bytes.append(12, '\0');  // normal
        bytes.append(reinterpret_cast<char const*>(f.data()), 36);
        bytes.append("\x12\x34", 2);  // attribute word, colour or not
    }
    return bytes;
}

}  // namespace

TEST(STLTextForm, OneSolid)
{
    soup_read r = text("solid x\n" + right_facet + facet("1 1 1", "2 1 1", "1 1 1") + "endsolid x\n");
    ASSERT_EQ(r.code, 0);
    ASSERT_EQ(r.pos.rows(), 3u);
    ASSERT_EQ(r.pos.cols(), 6u);
    EXPECT_EQ(column(r.pos, 1), (std::vector<double>{4, 0, 0}));
    EXPECT_EQ(column(r.pos, 4), (std::vector<double>{2, 1, 1}));
    // The degenerate second facet does not count.
    EXPECT_DOUBLE_EQ(r.min_sqr_height, 144.0 / 25.0);
}

TEST(STLTextForm, CapitalsColoursSolidsAndLayout)
{
    std::string upper = "FACET NORMAL 0 0 1\nOUTER LOOP\nVERTEX 1E+00 0 0\nVERTEX 0 2.5E-1 0\nVERTEX 0 0 1\n"
                        "ENDLOOP\nENDFACET\n";
    soup_read r = text("SOLID A\r\ncolor 1 0 0\n" + upper + "COLOR 0 1 0\n" + right_facet +
                       "endsolid A\n  solid B  \n\tfacet normal 0 0 1\n outer loop\nvertex\t1 1 1\nvertex 2 1 1\n"
                       "vertex 1 2 1 trailing words\n endloop\n endfacet\nendsolid\nsolid empty\nendsolid empty\n");
    ASSERT_EQ(r.code, 0);
    ASSERT_EQ(r.pos.cols(), 9u);
    EXPECT_EQ(column(r.pos, 0), (std::vector<double>{1, 0, 0}));
    EXPECT_EQ(column(r.pos, 1), (std::vector<double>{0, 0.25, 0}));
    EXPECT_EQ(column(r.pos, 8), (std::vector<double>{1, 2, 1}));
    // Heights squared: 1.125 / 2 for the first facet, 144 / 25 for the second, 1 / 2 over the
    // right angle of the third.
    EXPECT_DOUBLE_EQ(r.min_sqr_height, 0.5);
}

TEST(STLTextForm, Refusals)
{
    struct refusal {
        int code;
        std::string bytes;
    };
    std::string head = "solid s\n" + right_facet;
    for (auto const& c : std::vector<refusal>{
             {-2, ""},
             {-2, "facet normal 0 0 1\n"},
             {-3, "solid s\n"},
             {-3, head},                                      // no "endsolid"
             {-3, head + "endsolid s\n\n"},                   // blank line after "endsolid"
             {-3, head + "endsolid s\nsolid t\n"},            // a new solid and nothing after
             {-3, "solid s\ncolor 1 1 1\n"},                  // colour as the last line
             {-3, "solid s\nfacet normal 0 0\n"},             // two numbers
             {-3, "solid s\nfacet 0 0 1\n"},                  // "normal" missing
             {-3, "solid s\n" + facet("0 0 0", "1 0", "0 1 0") + "endsolid\n"},
             {-3, "solid s\n" + facet("0 0 0", "1 0 0", "x 1 0") + "endsolid\n"},
             {-3, "solid s\nfacet normal 0 0 1\nouter\n"},     // "outer loop" missing
             {-3, "solid s\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\nendfacet\n"},
         }) {
        soup_read r = text(c.bytes);
        EXPECT_EQ(r.code, c.code) << c.bytes;
    }
}

TEST(STLTextForm, LongLinesComeInPieces)
{
    // The tail of a line past 255 characters is read as a line of its own.
    std::string padded = " facet normal 0 0 1" + std::string(300, ' ') + "\n";
    EXPECT_EQ(text("solid s\n" + padded).code, -3);
    std::string name = "solid " + std::string(400, 'n') + "\n";
    EXPECT_EQ(text(name + right_facet + "endsolid\n").code, -3);
    // 255 characters are read at once, line feed included: 254 and the line feed fit, 255 do not.
    std::string rest = right_facet.substr(right_facet.find("  outer"));
    std::string fits = " facet normal 0 0 1" + std::string(254 - 19, ' ') + "\n";
    EXPECT_EQ(text("solid s\n" + fits + rest + "endsolid\n").code, 0);
    std::string too_long = " facet normal 0 0 1" + std::string(255 - 19, ' ') + "\n";
    EXPECT_EQ(text("solid s\n" + too_long + rest + "endsolid\n").code, -3);
}

TEST(STLTextForm, NonFiniteNumbers)
{
    soup_read r = text("solid s\n" + facet("nan 0 0", "inf 0 0", "0 -INF 1e999") + right_facet + "endsolid\n");
    ASSERT_EQ(r.code, 0);
    ASSERT_EQ(r.pos.cols(), 6u);
    EXPECT_TRUE(std::isnan(r.pos(0, 0)));
    EXPECT_TRUE(std::isinf(r.pos(1, 2)));
    EXPECT_DOUBLE_EQ(r.min_sqr_height, 144.0 / 25.0);
}

TEST(STLBinaryForm, FacetsAndCounts)
{
    soup_read r = binary(binary_file(2, {{0, 0, 0, 4, 0, 0, 0, 3, 0}, {0, 0, 0, 0.1f, 0, 0, 0, 0.1f, 0}}, "solid x"));
    ASSERT_EQ(r.code, 0);
    ASSERT_EQ(r.pos.cols(), 6u);
    EXPECT_EQ(column(r.pos, 4), (std::vector<double>{double(0.1f), 0, 0}));
    double leg = 0.1f;
    EXPECT_DOUBLE_EQ(r.min_sqr_height, leg * leg / 2);

    for (std::int32_t count : {0, -1, INT32_MIN}) {
        soup_read empty = binary(binary_file(count, {{0, 0, 0, 1, 0, 0, 0, 1, 0}}));
        EXPECT_EQ(empty.code, 0);
        EXPECT_TRUE(empty.pos.empty());
        EXPECT_EQ(empty.min_sqr_height, DBL_MAX);
    }
}

TEST(STLBinaryForm, ShortFiles)
{
    std::string one = binary_file(1, {{0, 0, 0, 1, 0, 0, 0, 1, 0}});
    EXPECT_EQ(binary(one.substr(0, 79)).code, -2);
    EXPECT_EQ(binary(one.substr(0, 83)).code, -3);
    for (std::size_t cut : {84u, 100u, 131u, 132u, 133u}) EXPECT_EQ(binary(one.substr(0, cut)).code, -3) << cut;
    // A count far beyond the file: nothing is reserved for it, and the end of the data is -3.
    std::string lying = binary_file(INT32_MAX, {{0, 0, 0, 1, 0, 0, 0, 1, 0}, {0, 0, 0, 1, 0, 0, 0, 1, 0}});
    long before = test_alloc::live_blocks();
    soup_read r = binary(lying);
    EXPECT_EQ(r.code, -3);
    EXPECT_LE(r.pos.capacity(), 6u * 3u + 3u * 96u);
    r = soup_read{};
    EXPECT_EQ(test_alloc::live_blocks(), before);
    // Extra bytes behind the last facet are ignored.
    EXPECT_EQ(binary(one + "\n").code, 0);
}

TEST(STLBothForms, FailedGrowthIsReported)
{
    std::string bin = binary_file(3, {{0, 0, 0, 1, 0, 0, 0, 1, 0}, {0, 0, 0, 1, 0, 0, 0, 1, 0}, {0, 0, 0, 1, 0, 0, 0, 1, 0}});
    std::string txt = "solid s\n" + right_facet + "endsolid\n";
    for (auto const* bytes : {&bin, &txt}) {
        std::string path = write_file("grow.stl", *bytes);
        std::FILE* file = std::fopen(path.c_str(), "rb");
        dense2D<double> pos;
        int r;
        {
            test_alloc::failing_scope guard(0);
            __STL_soup soup(pos);
            r = (bytes == &bin ? __STL_read_binary : __STL_read_text)(file, soup);
        }
        std::fclose(file);
        EXPECT_EQ(r, -199);
    }
}
