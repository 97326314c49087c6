#include "exchange/group_checks.h"

#include "exchange/groups.h"

#include <algorithm>

namespace qv7 {
namespace tessarium {
namespace {

bool pos_rows_fit(dense2D<double> const& pos, unsigned min_rows) noexcept
{
    return pos.rows() >= min_rows && pos.rows() <= 3;
}

// The rows a group of `type` takes from a matrix of `rows` rows.
std::size_t group_rows(element_type type, std::size_t rows) noexcept
{
    if (type == ET_SOLID_MIX) return std::min<std::size_t>(rows, 20);
    if (type == ET_FACE_MIX) return std::min<std::size_t>(rows, 4);
    return nbr_nodes(type);
}

}  // namespace

int __check_groups(__range_rules rules, dense2D<double> const& pos, dense2D<unsigned> const* first,
                   dense2D<unsigned> const* last, dense1D<int, 8> const& FEs) noexcept
{
    if (!pos_rows_fit(pos, rules.min_pos_rows)) return -2;
    if (last < first) return -4;
    std::size_t count = static_cast<std::size_t>(last - first);
    if (FEs.size() != count) return -5;
    unsigned node_limit = rules.IDs_below_nodes ? static_cast<unsigned>(pos.cols()) : NONE_ID;
    for (std::size_t i = 0; i < count; ++i) {
        if (first[i].empty()) continue;
        if (!__is_element_type(FEs[i]) || !check_IDs(first[i], element_type(FEs[i]), node_limit)) return -3;
    }
    return 0;
}

int __check_grouped_mesh(dense2D<double> const& pos, dense2D<unsigned> const& connectM,
                         dense1D<unsigned, 8> const& indices, dense1D<int, 8> const& FEs, std::size_t per_element)
{
    if (!pos_rows_fit(pos, 2)) return -2;
    if (FEs.size() + 1 != indices.size()) return -5;
    if (per_element != connectM.cols()) return -6;
    for (std::size_t g = 0; g < FEs.size(); ++g) {
        __column_range range = __group_columns(indices, g);
        if (range.count && range.first + range.count > connectM.cols()) return -4;
        if (!__is_element_type(FEs[g])) return -3;
        element_type type = static_cast<element_type>(FEs[g]);
        std::size_t rows = group_rows(type, connectM.rows());
        if (rows > connectM.rows()) return -3;
        if (!check_IDs(connectM.submatrix(range.first, range.count, rows), type, NONE_ID)) return -3;
    }
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
