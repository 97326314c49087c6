// Selecting the elements that lie strictly on one side of a plane.
#include "search/node_count.h"
#include "tessarium/array_ops.h"
#include "tessarium/element_type.h"
#include "tessarium/repair.h"

#include <algorithm>
#include <cmath>

namespace qv7 {
namespace tessarium {

namespace {

enum : short { side_unknown = 0, side_positive = 1, side_other = -1 };

// Coordinates beyond the rows of pos count as 0, so a 2-row mesh lies at z = 0.
short side_of(dense2D<double> const& pos, unsigned node, vector_fixed<double, 3> const& P,
              vector_fixed<double, 3> const& N)
{
    double const* p = pos.col(node);
    std::size_t rows = std::min<std::size_t>(pos.rows(), 3);
    double d[3] = {0.0, 0.0, 0.0};
    for (std::size_t k = 0; k < 3; ++k) d[k] = (k < rows ? p[k] : 0.0) - P[k];
    double s = d[0] * N[0] + d[1] * N[1] + d[2] * N[2];
    return s > 0.0 ? side_positive : side_other;
}

// A column is chosen when every node up to its first NONE_ID is strictly on the positive side;
// each node is evaluated once, whatever the number of its elements.
bool chosen(dense2D<double> const& pos, unsigned const* column, std::size_t rows, vector_fixed<double, 3> const& P,
            vector_fixed<double, 3> const& N, dense1D<short, 8>& side)
{
    for (std::size_t r = 0; r < rows; ++r) {
        unsigned v = column[r];
        if (v == NONE_ID) return true;
        if (side[v] == side_unknown) side[v] = side_of(pos, v, P, N);
        if (side[v] != side_positive) return false;
    }
    return true;
}

}  // namespace

int clip(dense2D<double> const& pos, dense2D<unsigned> const& connect, vector_fixed<double, 3> const& P,
         vector_fixed<double, 3> const& N, dense2D<unsigned>& out)
{
    if (connect.empty()) return 0;
    if (!check_IDs(connect, __node_count(pos))) return -2;
    if (std::sqrt(N[0] * N[0] + N[1] * N[1] + N[2] * N[2]) < 1e-12) return -4;
    if (!out.empty() && out.rows() != connect.rows()) return -5;

    dense1D<short, 8> side;
    dense1D<unsigned, 8> columns;
    if (!side.push_back_n(side_unknown, pos.cols())) return -199;
    for (std::size_t j = 0; j < connect.cols(); ++j)
        if (chosen(pos, connect.col(j), connect.rows(), P, N, side) && !columns.push_back(static_cast<unsigned>(j)))
            return -199;
    return matmat::push_back(connect, columns, out) ? 0 : -199;
}

}  // namespace tessarium
}  // namespace qv7
