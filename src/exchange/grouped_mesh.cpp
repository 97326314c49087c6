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

void __empty_results(dense2D<double>& pos, dense2D<unsigned>& connectM, dense1D<unsigned, 8>& indices,
                     dense1D<int, 8>& FEs, dense1D<unsigned, 8>& per_element) noexcept
{
    pos.clear();
    connectM.clear();
    indices.clear();
    FEs.clear();
    per_element.clear();
}

int __read_one_matrix(__grouped_reader read, char const* file_name, dense2D<double>& pos,
                      dense2D<unsigned>& connectM, element_type& FE)
{
    dense1D<unsigned, 8> indices, per_element;
    dense1D<int, 8> FEs;
    int result = read(file_name, pos, connectM, indices, FEs, per_element);
    FE = result >= 0 && FEs.size() == 1 ? static_cast<element_type>(FEs[0]) : ET_NONE;
    return result;
}

int __read_two_matrices(__grouped_reader read, bool first_keeps_rows, char const* file_name,
                        dense2D<double>& pos, dense2D<unsigned>& connectM1, dense2D<unsigned>& connectM2,
                        element_type& FE1, element_type& FE2)
{
    dense2D<unsigned> all;
    dense1D<unsigned, 8> indices, per_element;
    dense1D<int, 8> FEs;
    int result = read(file_name, pos, all, indices, FEs, per_element);
    if (result < 0) return result;
    if (indices.size() >= 2 && FEs.size() >= 1) {
        FE1 = static_cast<element_type>(FEs[0]);
        connectM1 = __group_view(all, indices, 0, first_keeps_rows ? all.rows() : nbr_nodes(FE1));
    }
    if (indices.size() >= 3 && FEs.size() >= 2) {
        FE2 = static_cast<element_type>(FEs[1]);
        connectM2 = __group_view(all, indices, 1, nbr_nodes(FE2));
    }
    return result;
}

int __write_one_matrix(__grouped_writer write, char const* file_name, dense2D<double> const& pos,
                       dense2D<unsigned> const& connectM, element_type FE)
{
    dense1D<unsigned, 8> indices, per_element;
    dense1D<int, 8> FEs;
    std::size_t cols = connectM.cols();
    if (!indices.push_back(0u) || !indices.push_back(static_cast<unsigned>(cols)) || !FEs.push_back(FE) ||
        !per_element.push_back_n(1u, cols))
        return -199;
    return write(file_name, pos, connectM, indices, FEs, per_element);
}

int __write_two_matrices(__grouped_writer write, bool running_end, char const* file_name,
                         dense2D<double> const& pos, dense2D<unsigned> const& connectM1,
                         dense2D<unsigned> const& connectM2, element_type FE1, element_type FE2)
{
    std::size_t c1 = connectM1.cols(), c2 = connectM2.cols();
    dense2D<unsigned> all;
    if (!all.resize(std::max(connectM1.rows(), connectM2.rows()), c1 + c2, NONE_ID)) return -199;
    for (std::size_t j = 0; j < c1; ++j) matmat::__copy_column(connectM1, j, all, j);
    for (std::size_t j = 0; j < c2; ++j) matmat::__copy_column(connectM2, j, all, c1 + j);
    dense1D<unsigned, 8> indices, per_element;
    dense1D<int, 8> FEs;
    if (!indices.push_back(0u) || !indices.push_back(static_cast<unsigned>(c1)) ||
        !indices.push_back(static_cast<unsigned>(running_end ? c1 + c2 : c2)) || !FEs.push_back(FE1) ||
        !FEs.push_back(FE2) || !per_element.push_back_n(1u, c1) || !per_element.push_back_n(2u, c2))
        return -199;
    return write(file_name, pos, all, indices, FEs, per_element);
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
