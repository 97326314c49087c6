// How the gradation minimiser reads a measure and a manager: the metric kind and dimension of a
// measure, the metric at a node, and the measure of edge (i, n) with a given metric at i.
#pragma once

#include "metrics/h_shock_measures.h"
#include "tessarium/element_type.h"

namespace qv7 {

template <class Measure>
struct __measure_traits {
    using metric_type = typename Measure::metric_type;
    static constexpr unsigned dim = Measure::D;
};

template <class Manager>
auto mgr_metric(Manager const& mgr, unsigned i)
{
    return mgr.get_metric(i);
}

template <class Manager, class Metric>
void mgr_store(Manager& mgr, unsigned i, Metric const& m)
{
    mgr.set_metric(i, m);
}

// The measure of edge (i, n) with m in place of the metric at i: the variation takes m itself,
// the shock m, the metric at n and the vector from i to n.
template <class Measure, class Manager, class Metric>
double __measure_with(Measure const& measure, dense2D<double> const& pos, Manager const& mgr, unsigned i, unsigned n,
                      Metric const& m)
{
    return measure.val(pos, mgr, i, n, m);
}

template <class L, class Manager, class Metric>
double __measure_with(H_shock_measure<L> const& measure, dense2D<double> const& pos, Manager const& mgr, unsigned i,
                      unsigned n, Metric const& m)
{
    double length;
    return measure.val(m, mgr.get_metric(n), __edge_vector<L::dim>(pos, i, n), length);
}

}  // namespace qv7
