#include "exchange_files.h"
#include "support/failing_alloc.h"
#include "tessarium/tessarium.h"

#include <gtest/gtest.h>

using namespace qv7;
using namespace qv7::tessarium;
using exchange_test::array;
using exchange_test::counting;
using exchange_test::points;

namespace {

using writer = int (*)(char const*, dense2D<double> const&, dense2D<unsigned> const&, dense1D<unsigned, 8> const&,
                       dense1D<int, 8> const&, dense1D<unsigned, 8> const&);

struct refused_call {
    std::size_t pos_rows, rows;
    std::vector<unsigned> indices;
    std::vector<int> FEs;
    std::size_t per_element;
    int code;
};

}  // namespace

TEST(GroupedMesh, BothWritersRefuseInOneOrderAndLeaveAnEmptyFile)
{
    refused_call const calls[] = {
        {1, 3, {0, 1}, {}, 2, -2},                  // pos is checked first
        {3, 3, {0, 1}, {ET_FACE_T3, ET_NODE}, 2, -5},  // then FEs against indices
        {3, 3, {0, 1}, {ET_FACE_T3}, 2, -6},        // then one value per column
        {3, 3, {0, 2}, {ET_FACE_T3}, 1, -4},        // a group past the columns
        {3, 3, {0, 1}, {ET_TETRA4}, 1, -3},         // more rows than the matrix has
        {3, 3, {0, 1}, {99}, 1, -3},                // no such type
        {3, 7, {0, 1}, {ET_SOLID_MIX}, 1, -3},      // a mixed solid of 7 rows
    };
    std::string path = exchange_test::temp_path("grouped_refused.out");
    for (writer write : {writer(NASTRAN_output), writer(FEMAP_output)}) {
        for (refused_call const& c : calls) {
            dense2D<double> pos = points(3).submatrix(0, 3, c.pos_rows);
            std::vector<unsigned> per(c.per_element, 1u);
            EXPECT_EQ(write(path.c_str(), pos, counting(c.rows), array(c.indices), array(c.FEs), array(per)), c.code);
            EXPECT_EQ(exchange_test::read_file(path), "");
        }
        EXPECT_EQ(write(exchange_test::temp_path("no/such/dir").c_str(), points(3), counting(3),
                        array<unsigned>({0, 1}), array<int>({ET_FACE_T3}), array<unsigned>({1})),
                  -1);
    }
    dense2D<double> pos = points(3);
    dense2D<unsigned> tri = counting(3);
    test_alloc::failing_scope guard(0);
    EXPECT_EQ(NASTRAN_output(path.c_str(), pos, tri, tri, ET_FACE_T3, ET_FACE_T3), -199);
    EXPECT_EQ(FEMAP_output(path.c_str(), pos, tri, ET_FACE_T3), -199);
}
