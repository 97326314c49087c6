#include "tessarium/mesh.h"

#include <algorithm>

namespace qv7 {
namespace tessarium {
namespace {

// The corner shape a type stands for in a mixed array, or ET_NONE.
element_type mixed_member(element_type type) noexcept
{
    switch (type) {
    case ET_FACE_T3:
    case ET_FACE_T6:
        return ET_FACE_T3;
    case ET_FACE_Q4:
    case ET_FACE_Q8:
    case ET_FACE_Q9:
        return ET_FACE_Q4;
    case ET_TETRA4:
    case ET_TETRA10:
        return ET_TETRA4;
    case ET_PYRAMID5:
    case ET_PYRAMID13:
    case ET_PYRAMID14:
        return ET_PYRAMID5;
    case ET_WEDGE6:
    case ET_WEDGE15:
    case ET_WEDGE18:
        return ET_WEDGE6;
    case ET_HEXA8:
    case ET_HEXA20:
    case ET_HEXA27:
        return ET_HEXA8;
    default:
        return ET_NONE;
    }
}

}  // namespace

std::array<std::size_t, nbr_element_types> count_by_type(mesh const& m)
{
    std::array<std::size_t, nbr_element_types> counts{};
    for (element_block const& b : m.blocks)
        if (b.type >= 0 && b.type < static_cast<int>(nbr_element_types)) counts[b.type] += b.connect.cols();
    return counts;
}

bool bounding_box(mesh const& m, double (&lo)[3], double (&hi)[3])
{
    dense2D<double> const& pos = m.pos;
    if (pos.cols() == 0 || pos.rows() == 0) return false;
    std::size_t dim = std::min<std::size_t>(pos.rows(), 3);
    for (std::size_t i = 0; i < 3; ++i) lo[i] = hi[i] = i < dim ? pos(i, 0) : 0.0;
    for (std::size_t j = 1; j < pos.cols(); ++j)
        for (std::size_t i = 0; i < dim; ++i) {
            lo[i] = std::min(lo[i], pos(i, j));
            hi[i] = std::max(hi[i], pos(i, j));
        }
    return true;
}

int to_mixed(mesh const& m, unsigned dim, dense2D<unsigned>& connectM, element_type& FE)
{
    if (dim != 2 && dim != 3) return -1;
    std::size_t rows = dim == 3 ? 8 : 4, cols = 0;
    for (element_block const& b : m.blocks)
        if (element_dim(mixed_member(b.type)) == dim) cols += b.connect.cols();
    connectM.clear();
    if (!connectM.resize(rows, cols, NONE_ID)) return -199;
    std::size_t j = 0;
    for (element_block const& b : m.blocks) {
        element_type member = mixed_member(b.type);
        if (element_dim(member) != dim) continue;
        unsigned corners = nbr_nodes(member);
        for (std::size_t e = 0; e < b.connect.cols(); ++e, ++j)
            std::copy(b.connect.col(e), b.connect.col(e) + corners, connectM.col(j));
    }
    FE = dim == 3 ? ET_SOLID_MIX : ET_FACE_MIX;
    return static_cast<int>(cols);
}

int add_mixed(mesh& m, dense2D<unsigned> const& connectM, element_type FE)
{
    if (connectM.empty()) return 0;
    if (!check_IDs(connectM, FE, static_cast<unsigned>(m.pos.cols()))) return -3;
    element_type type = __narrow(FE, connectM.rows());
    if (type != ET_SOLID_MIX && type != ET_FACE_MIX) {
        element_block b;
        b.type = type;
        if (!b.connect.copy(connectM)) return -199;
        m.blocks.push_back(b);
        return static_cast<int>(connectM.cols());
    }
    // A mixed column's node count is the place of its first NONE_ID.
    auto valid = [&](std::size_t j) {
        unsigned const* c = connectM.col(j);
        return static_cast<unsigned>(std::find(c, c + connectM.rows(), NONE_ID) - c);
    };
    element_type const solids[] = {ET_TETRA4, ET_PYRAMID5, ET_WEDGE6, ET_HEXA8};
    element_type const faces[] = {ET_FACE_T3, ET_FACE_Q4};
    std::vector<element_type> members(type == ET_SOLID_MIX ? std::begin(solids) : std::begin(faces),
                                      type == ET_SOLID_MIX ? std::end(solids) : std::end(faces));
    for (element_type member : members) {
        unsigned n = nbr_nodes(member);
        std::size_t count = 0;
        for (std::size_t j = 0; j < connectM.cols(); ++j) count += valid(j) == n;
        if (count == 0) continue;
        element_block b;
        b.type = member;
        if (!b.connect.resize(n, count)) return -199;
        std::size_t k = 0;
        for (std::size_t j = 0; j < connectM.cols(); ++j)
            if (valid(j) == n) std::copy(connectM.col(j), connectM.col(j) + n, b.connect.col(k++));
        m.blocks.push_back(b);
    }
    return static_cast<int>(connectM.cols());
}

}  // namespace tessarium
}  // namespace qv7
