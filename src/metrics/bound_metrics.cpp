#include "metrics/metric_anisotropic.h"
#include "metrics/metric_columns.h"

#include <cmath>

namespace qv7 {
namespace tessarium {
namespace {

// The refusals shared by both kinds, after the early returns: -2 bad hmin, -3 bad hmax, else 0.
int check_bounds(double hmin, double hmax)
{
    if (!std::isfinite(hmin)) return -2;
    if (!std::isfinite(hmax)) return -3;
    return 0;
}

// Counts a change at `position`; false when `changed` could not take it.
bool note_change(std::size_t position, dense1D<unsigned, 8>* changed)
{
    return !changed || changed->push_back(static_cast<unsigned>(position));
}

int bound_sizes(dense1D<double, 8>& metrics, double hmin, double hmax, dense1D<unsigned, 8>* changed)
{
    if (changed) changed->clear();
    if (metrics.empty() || __bounds_nothing(hmin, hmax)) return 0;
    if (int code = check_bounds(hmin, hmax)) return code;
    int count = 0;
    bool noted = true;
    for (std::size_t i = 0; i < metrics.size(); ++i) {
        double& h = metrics[i];
        if (hmin > h)
            h = hmin;
        else if (h > hmax)
            h = hmax;
        else
            continue;
        ++count;
        noted &= note_change(i, changed);
    }
    return noted ? count : -199;
}

int bound_tensors(dense2D<double>& metrics, double hmin, double hmax, dense1D<unsigned, 8>* changed)
{
    if (changed) changed->clear();
    if (metrics.empty() || __bounds_nothing(hmin, hmax)) return 0;
    return __with_metric_dim(metrics.rows(), -1, [&](auto dim) {
        if (int code = check_bounds(hmin, hmax)) return code;
        int count = 0;
        bool noted = true;
        for (std::size_t j = 0; j < metrics.cols(); ++j) {
            metric_anisotropic<dim.value> M{__load_metric<dim.value>(metrics, j)};
            bool bounded = M.bound(hmin, hmax);
            __store_metric<dim.value>(M, metrics, j);
            if (!bounded) continue;
            ++count;
            noted &= note_change(j, changed);
        }
        return noted ? count : -199;
    });
}

}  // namespace

int bound_metrics(dense1D<double, 8>& metrics, double hmin, double hmax)
{
    return bound_sizes(metrics, hmin, hmax, nullptr);
}
int bound_metrics(dense1D<double, 8>& metrics, double hmin, double hmax, dense1D<unsigned, 8>& changed)
{
    return bound_sizes(metrics, hmin, hmax, &changed);
}
int bound_metrics(dense2D<double>& metrics, double hmin, double hmax)
{
    return bound_tensors(metrics, hmin, hmax, nullptr);
}
int bound_metrics(dense2D<double>& metrics, double hmin, double hmax, dense1D<unsigned, 8>& changed)
{
    return bound_tensors(metrics, hmin, hmax, &changed);
}

}  // namespace tessarium
}  // namespace qv7
