#include "exchange/convenience_forms.h"

#include "exchange/groups.h"
#include "tessarium/array_ops.h"

#include <algorithm>

namespace qv7 {
namespace tessarium {

int __write_one_matrix(__range_writer write, char const* file_name, dense2D<double> const& pos,
                       dense2D<unsigned> const& connectM, element_type FE)
{
    dense1D<int, 8> FEs(1, FE);
    if (FEs.empty()) return -199;
    return write(file_name, pos, &connectM, &connectM + 1, FEs);
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

int __write_two_matrices(__range_writer write, char const* file_name, dense2D<double> const& pos,
                         dense2D<unsigned> const& connectM1, dense2D<unsigned> const& connectM2, element_type FE1,
                         element_type FE2)
{
    dense2D<unsigned> groups[2] = {connectM1, connectM2};
    dense1D<int, 8> FEs(2, FE1);
    if (FEs.empty()) return -199;
    FEs[1] = FE2;
    return write(file_name, pos, groups, groups + 2, FEs);
}

int __write_two_matrices(__grouped_writer write, bool running_end, char const* file_name, dense2D<double> const& pos,
                         dense2D<unsigned> const& connectM1, dense2D<unsigned> const& connectM2, element_type FE1,
                         element_type FE2)
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

void __empty_results(dense2D<double>& pos, dense2D<unsigned>& connectM, dense1D<unsigned, 8>& indices,
                     dense1D<int, 8>& FEs, dense1D<unsigned, 8>& per_element) noexcept
{
    pos.clear();
    connectM.clear();
    indices.clear();
    FEs.clear();
    per_element.clear();
}

int __read_one_matrix(__grouped_reader read, char const* file_name, dense2D<double>& pos, dense2D<unsigned>& connectM,
                      element_type& FE)
{
    dense1D<unsigned, 8> indices, per_element;
    dense1D<int, 8> FEs;
    int result = read(file_name, pos, connectM, indices, FEs, per_element);
    FE = result >= 0 && FEs.size() == 1 ? static_cast<element_type>(FEs[0]) : ET_NONE;
    return result;
}

int __read_two_matrices(__grouped_reader read, bool first_keeps_rows, char const* file_name, dense2D<double>& pos,
                        dense2D<unsigned>& connectM1, dense2D<unsigned>& connectM2, element_type& FE1,
                        element_type& FE2)
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

}  // namespace tessarium
}  // namespace qv7
