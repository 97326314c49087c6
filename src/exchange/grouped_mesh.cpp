#include "exchange/grouped_mesh.h"

#include "tessarium/array_ops.h"

#include <algorithm>

namespace qv7 {
namespace tessarium {
namespace {

// The rows a group of `type` takes from a matrix of `rows` rows.
std::size_t group_rows(element_type type, std::size_t rows) noexcept
{
    if (type == ET_SOLID_MIX) return std::min<std::size_t>(rows, 20);
    if (type == ET_FACE_MIX) return std::min<std::size_t>(rows, 4);
    return nbr_nodes(type);
}

bool missing(unsigned const* column, std::size_t rows, std::size_t row) noexcept
{
    return row >= rows || column[row] == NONE_ID;
}

}  // namespace

__column_range __group_columns(dense1D<unsigned, 8> const& indices, std::size_t g) noexcept
{
    std::size_t first = indices[g], last = indices[g + 1];
    return {first, last > first ? last - first : 0};
}

dense2D<unsigned> __group_view(dense2D<unsigned> const& M, dense1D<unsigned, 8> const& indices,
                               std::size_t g, std::size_t rows)
{
    __column_range range = __group_columns(indices, g);
    std::size_t first = std::min(range.first, M.cols());
    std::size_t count = std::min(range.count, M.cols() - first);
    return M.submatrix(first, count, std::min(rows, M.rows()));
}

int __check_grouped_mesh(dense2D<double> const& pos, dense2D<unsigned> const& connectM,
                         dense1D<unsigned, 8> const& indices, dense1D<int, 8> const& FEs,
                         std::size_t per_element)
{
    if (pos.rows() != 2 && pos.rows() != 3) return -2;
    if (FEs.size() + 1 != indices.size()) return -5;
    if (per_element != connectM.cols()) return -6;
    for (std::size_t g = 0; g < FEs.size(); ++g) {
        __column_range range = __group_columns(indices, g);
        if (range.count && range.first + range.count > connectM.cols()) return -4;
        if (FEs[g] < 0 || FEs[g] >= static_cast<int>(nbr_element_types)) return -3;
        element_type type = static_cast<element_type>(FEs[g]);
        std::size_t rows = group_rows(type, connectM.rows());
        if (rows > connectM.rows()) return -3;
        if (!check_IDs(connectM.submatrix(range.first, range.count, rows), type, NONE_ID)) return -3;
    }
    return 0;
}

bool __concatenate(dense2D<unsigned> const& A, dense2D<unsigned> const& B, dense2D<unsigned>& all)
{
    std::size_t a = A.cols(), b = B.cols();
    if (!all.resize(std::max(A.rows(), B.rows()), a + b, NONE_ID)) return false;
    for (std::size_t j = 0; j < a; ++j) matmat::__copy_column(A, j, all, j);
    for (std::size_t j = 0; j < b; ++j) matmat::__copy_column(B, j, all, a + j);
    return true;
}

void __empty_results(dense2D<double>& pos, dense2D<unsigned>& connectM, dense1D<unsigned, 8>& indices,
                     dense1D<int, 8>& FEs, dense1D<unsigned, 8>& per_element) noexcept
{
    pos.clear();
    connectM.clear();
    indices.clear();
    FEs.clear();
    per_element.clear();
}

element_type __single_group_type(int result, dense1D<int, 8> const& FEs) noexcept
{
    return result >= 0 && FEs.size() == 1 ? static_cast<element_type>(FEs[0]) : ET_NONE;
}

void __first_two_groups(int result, dense2D<unsigned> const& all, dense1D<unsigned, 8> const& indices,
                        dense1D<int, 8> const& FEs, bool first_keeps_rows, dense2D<unsigned>& M1,
                        dense2D<unsigned>& M2, element_type& FE1, element_type& FE2)
{
    if (result < 0) return;
    if (indices.size() >= 2 && FEs.size() >= 1) {
        FE1 = static_cast<element_type>(FEs[0]);
        M1 = __group_view(all, indices, 0, first_keeps_rows ? all.rows() : nbr_nodes(FE1));
    }
    if (indices.size() >= 3 && FEs.size() >= 2) {
        FE2 = static_cast<element_type>(FEs[1]);
        M2 = __group_view(all, indices, 1, nbr_nodes(FE2));
    }
}

bool __one_group(std::size_t cols, element_type FE, dense1D<unsigned, 8>& indices, dense1D<int, 8>& FEs,
                 dense1D<unsigned, 8>& per_element)
{
    return indices.push_back(0u) && indices.push_back(static_cast<unsigned>(cols)) && FEs.push_back(FE) &&
           per_element.push_back_n(1u, cols);
}

bool __two_groups(std::size_t c1, std::size_t c2, std::size_t end2, element_type FE1, element_type FE2,
                  dense1D<unsigned, 8>& indices, dense1D<int, 8>& FEs, dense1D<unsigned, 8>& per_element)
{
    return indices.push_back(0u) && indices.push_back(static_cast<unsigned>(c1)) &&
           indices.push_back(static_cast<unsigned>(end2)) && FEs.push_back(FE1) && FEs.push_back(FE2) &&
           per_element.push_back_n(1u, c1) && per_element.push_back_n(2u, c2);
}

element_type __face_mix_element(unsigned const* column, std::size_t rows) noexcept
{
    return missing(column, rows, 3) ? ET_FACE_T3 : ET_FACE_Q4;
}

element_type __solid_mix_element(unsigned const* column, std::size_t rows) noexcept
{
    if (missing(column, rows, 4)) return ET_TETRA4;
    if (missing(column, rows, 5)) return ET_PYRAMID5;
    return missing(column, rows, 6) ? ET_WEDGE6 : ET_HEXA8;
}

}  // namespace tessarium
}  // namespace qv7
