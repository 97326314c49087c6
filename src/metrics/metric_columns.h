// Tensor maps column by column: a column of 3 rows is a 2D metric, of 6 rows a 3D one.
#pragma once

#include "metrics/eigen.h"
#include "tessarium/dense2D.h"
#include "tessarium/metrics.h"

#include <algorithm>
#include <cstddef>
#include <type_traits>

namespace qv7 {

template <unsigned D>
using __dim = std::integral_constant<unsigned, D>;

// Calls work(__dim<2>) for 3 rows and work(__dim<3>) for 6 rows; `other` for any other count.
template <class Result, class Work>
Result __with_metric_dim(std::size_t rows, Result other, Work&& work)
{
    if (rows == 3) return work(__dim<2>{});
    if (rows == 6) return work(__dim<3>{});
    return other;
}

template <unsigned D>
symmetric_fixed<double, D> __load_metric(dense2D<double> const& map, std::size_t j) noexcept
{
    symmetric_fixed<double, D> M;
    std::copy(map.col(j), map.col(j) + D * (D + 1) / 2, M.v);
    return M;
}

template <unsigned D>
void __store_metric(symmetric_fixed<double, D> const& M, dense2D<double>& map, std::size_t j) noexcept
{
    std::copy(M.v, M.v + D * (D + 1) / 2, map.col(j));
}

template <unsigned D>
bool __is_valid_column(dense2D<double> const& map, std::size_t j) noexcept
{
    return __smallest_eigenvalue(__load_metric<D>(map, j)) > 0.0;
}

// A size is valid in (0, DBL_LIMIT); NaN is not.
inline bool __is_valid_size(double h) noexcept
{
    return h > 0.0 && h < DBL_LIMIT;
}

// A bound on sizes that bounds nothing.
inline bool __bounds_nothing(double hmin, double hmax) noexcept
{
    return 0.0 >= hmin && hmax == DBL_LIMIT;
}

}  // namespace qv7
