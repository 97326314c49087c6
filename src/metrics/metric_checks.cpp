#include "metrics/metric_columns.h"

namespace qv7 {
namespace tessarium {
namespace {

// The first position p of [0, n) at which bad(p) holds, n when none does.
template <class Bad>
std::size_t first_bad(std::size_t n, Bad bad)
{
    for (std::size_t p = 0; p < n; ++p)
        if (bad(p)) return p;
    return n;
}

std::size_t first_invalid(dense1D<double, 8> const& metrics)
{
    return first_bad(metrics.size(), [&](std::size_t i) { return !__is_valid_size(metrics[i]); });
}

std::size_t first_invalid(dense1D<unsigned, 8> const& indices, dense1D<double, 8> const& metrics)
{
    return first_bad(indices.size(), [&](std::size_t p) {
        return indices[p] >= metrics.size() || !__is_valid_size(metrics[indices[p]]);
    });
}

std::size_t first_invalid(dense2D<double> const& metrics)
{
    return __with_metric_dim(metrics.rows(), std::size_t{0}, [&](auto dim) {
        return first_bad(metrics.cols(), [&](std::size_t j) { return !__is_valid_column<dim.value>(metrics, j); });
    });
}

std::size_t first_invalid(dense1D<unsigned, 8> const& indices, dense2D<double> const& metrics)
{
    return __with_metric_dim(metrics.rows(), std::size_t{0}, [&](auto dim) {
        return first_bad(indices.size(), [&](std::size_t p) {
            return indices[p] >= metrics.cols() || !__is_valid_column<dim.value>(metrics, indices[p]);
        });
    });
}

}  // namespace

unsigned first_invalid_metric(dense1D<double, 8> const& metrics)
{
    return first_invalid(metrics);
}
unsigned first_invalid_metric(dense1D<unsigned, 8> const& indices, dense1D<double, 8> const& metrics)
{
    return first_invalid(indices, metrics);
}
unsigned first_invalid_metric(dense2D<double> const& metrics)
{
    return first_invalid(metrics);
}
unsigned first_invalid_metric(dense1D<unsigned, 8> const& indices, dense2D<double> const& metrics)
{
    return first_invalid(indices, metrics);
}

bool are_valid_metrics(dense1D<double, 8> const& metrics)
{
    return first_invalid(metrics) == metrics.size();
}
bool are_valid_metrics(dense1D<unsigned, 8> const& indices, dense1D<double, 8> const& metrics)
{
    return first_invalid(indices, metrics) == indices.size();
}
bool are_valid_metrics(dense2D<double> const& metrics)
{
    return first_invalid(metrics) == metrics.cols();
}
bool are_valid_metrics(dense1D<unsigned, 8> const& indices, dense2D<double> const& metrics)
{
    return first_invalid(indices, metrics) == indices.size();
}

void valid_metrics(dense2D<double> const& metrics, dense1D<unsigned, 8>& indices)
{
    __with_metric_dim(metrics.rows(), 0, [&](auto dim) {
        for (std::size_t j = 0; j < metrics.cols(); ++j)
            if (__is_valid_column<dim.value>(metrics, j)) indices.push_back(static_cast<unsigned>(j));
        return 0;
    });
}

}  // namespace tessarium
}  // namespace qv7
