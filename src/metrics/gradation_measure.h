// How the gradation minimiser reads a measure and a manager: the metric kind and dimension of a
// measure, the metric at a node, and the measure of edge (i, n) with a given metric at i.
#pragma once

#include "metrics/metric_anisotropic.h"
#include "tessarium/dense2D.h"
#include "tessarium/element_type.h"

namespace qv7 {

template <class Measure>
struct __measure_traits {
    using metric_type = typename Measure::metric_type;
    static constexpr unsigned dim = Measure::dim;
};

template <class Manager>
auto mgr_metric(Manager const& mgr, unsigned i)
{
    return mgr.metric(i);
}

template <class Manager, class Metric>
void mgr_store(Manager& mgr, unsigned i, Metric const& m)
{
    mgr.set_metric(i, m);
}

// The measure of edge (i, n) with m in place of the metric at i.
template <class Measure, class Manager, class Metric>
double __measure_with(Measure const& measure, dense2D<double> const& pos, Manager const& mgr, unsigned i,
                      unsigned n, Metric const& m)
{
    return measure.val(pos, mgr, i, n, m);
}

}  // namespace qv7
