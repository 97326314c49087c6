// Access to the metric of each node through the caller's own array: a manager shares the array's
// storage, so that a metric written through it is in the caller's array at once. `size` is the
// number of nodes that have a metric; an array of tensors with fewer rows than the dimension
// needs has none.
#pragma once

#include "metrics/length_measures.h"
#include "metrics/metric_columns.h"
#include "tessarium/dense1D.h"
#include "tessarium/dense2D.h"

#include <algorithm>

namespace qv7 {

template <class L>
class metrics_mgr_isotropic {
public:
    using length_measure = L;
    using metric_type = metric_isotropic;

    explicit metrics_mgr_isotropic(dense1D<double, 8> const& sizes) : sizes_(sizes) {}

    std::size_t size() const noexcept { return sizes_.size(); }
    metric_type get_metric(std::size_t node) const noexcept { return sizes_[node]; }
    void set_metric(std::size_t node, metric_type h) noexcept { sizes_[node] = h; }

private:
    dense1D<double, 8> sizes_;
};

template <class L>
class metrics_mgr_anisotropic {
public:
    using length_measure = L;
    using metric_type = typename L::metric_type;
    static constexpr unsigned entries = L::dim * (L::dim + 1) / 2;

    explicit metrics_mgr_anisotropic(dense2D<double> const& tensors) : tensors_(tensors) {}

    std::size_t size() const noexcept { return tensors_.rows() >= entries ? tensors_.cols() : 0; }
    metric_type get_metric(std::size_t node) const noexcept { return {__load_metric<L::dim>(tensors_, node)}; }
    void set_metric(std::size_t node, metric_type const& M) noexcept { __store_metric<L::dim>(M, tensors_, node); }

private:
    dense2D<double> tensors_;
};

// The manager of a size map or a tensor map for dimension D.
template <unsigned D>
metrics_mgr_isotropic<length_measure_isotropic<D>> __metrics_mgr(dense1D<double, 8> const& sizes)
{
    return metrics_mgr_isotropic<length_measure_isotropic<D>>(sizes);
}
template <unsigned D>
metrics_mgr_anisotropic<length_measure_anisotropic<D>> __metrics_mgr(dense2D<double> const& tensors)
{
    return metrics_mgr_anisotropic<length_measure_anisotropic<D>>(tensors);
}

}  // namespace qv7
