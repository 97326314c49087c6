#include "metrics/metric_columns.h"

namespace qv7 {
namespace tessarium {

int overwrite_invalid_metrics(dense1D<double, 8>& metrics, dense1D<double, 8> const& fallback)
{
    std::size_t n = std::min(metrics.size(), fallback.size());
    int count = 0;
    for (std::size_t i = 0; i < n; ++i)
        if (fallback[i] > 0.0 && 0.0 >= metrics[i]) {
            metrics[i] = fallback[i];
            ++count;
        }
    return count;
}

int overwrite_invalid_metrics(dense2D<double>& metrics, dense1D<double, 8> const& fallback)
{
    if (metrics.empty()) return 0;
    return __with_metric_dim(metrics.rows(), -1, [&](auto dim) {
        std::size_t n = std::min(metrics.cols(), fallback.size());
        int count = 0;
        for (std::size_t i = 0; i < n; ++i)
            if (fallback[i] > 0.0 && !__is_valid_column<dim.value>(metrics, i)) {
                symmetric_fixed<double, dim.value> M;
                metric_iso_to_aniso(fallback[i], M);
                __store_metric<dim.value>(M, metrics, i);
                ++count;
            }
        return count;
    });
}

int overwrite_invalid_metrics(dense2D<double>& metrics, dense2D<double> const& fallback)
{
    if (metrics.empty()) return 0;
    return __with_metric_dim(metrics.rows(), -1, [&](auto dim) {
        if (fallback.rows() != metrics.rows()) return -2;
        std::size_t n = std::min(metrics.cols(), fallback.cols());
        int count = 0;
        for (std::size_t i = 0; i < n; ++i)
            if (__is_valid_column<dim.value>(fallback, i) && !__is_valid_column<dim.value>(metrics, i)) {
                __store_metric<dim.value>(__load_metric<dim.value>(fallback, i), metrics, i);
                ++count;
            }
        return count;
    });
}

}  // namespace tessarium
}  // namespace qv7
