// Bounds the gradation of a size map edge by edge, worst edge first: the node at one end of an
// edge above the bound moves towards the other end by the fraction that brings the edge to the
// bound. Nodes next to frozen nodes move only as far as a search over their frozen neighbours allows.
#pragma once

#include "metrics/dichotomic_min.h"
#include "metrics/gradation_measure.h"
#include "metrics/shock_queue.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace qv7 {

template <class Measure, class Manager>
class H_shock_minimiser {
public:
    using metric_type = typename __measure_traits<Measure>::metric_type;
    static constexpr unsigned D = __measure_traits<Measure>::dim;

    explicit H_shock_minimiser(Measure const& measure) : measure_(measure) {}

    // Sum over the frozen neighbours of the squared excess of their edges over the bound, with the
    // metric of i taken at t between its own and that of j.
    struct __shock_objective {
        using domain_type = double;
        using range_type = double;
        dense2D<double> const& pos;
        Manager const& mgr;
        unsigned i;
        metric_type metric_i;
        metric_type metric_j;
        Measure const& measure;
        double bound;
        dense1D<unsigned, 8> const& neighbours;
        signed char direction;

        double operator()(double t) const
        {
            metric_type m;
            if (!__candidate(t, metric_i, metric_j, direction, false, m)) return 0;
            double sum = 0;
            for (unsigned n : neighbours) {
                double e = __measure_with(measure, pos, mgr, i, n, m) - bound;
                if (e > 0) {
                    if (!(e < SIZE_HUGE)) return DBL_LIMIT;
                    sum += e * e;
                }
            }
            return sum;
        }
    };

    // One run over the graph of local nodes; node_ids maps them to pos and metric numbers. status:
    // NONE_ID frozen, 0 untouched, otherwise the stamp of the last change. Returns the number of
    // nodes changed or -199.
    int bound_metrics(dense2D<double> const& pos, dense1D<unsigned, 8> const& graph_offsets,
                      dense1D<unsigned, 8> const& graph_targets, dense1D<unsigned, 8> const& node_ids,
                      dense1D<unsigned, 8>& status, int direction, double bound, Manager& mgr) const
    {
        __shock_queue queue;
        return __bound_metrics(pos, graph_offsets, graph_targets, node_ids, status, direction, bound, mgr, queue);
    }

    // The run on a queue of the caller's, which can tell afterwards how many entries it took.
    template <class Queue>
    int __bound_metrics(dense2D<double> const& pos, dense1D<unsigned, 8> const& graph_offsets,
                        dense1D<unsigned, 8> const& graph_targets, dense1D<unsigned, 8> const& node_ids,
                        dense1D<unsigned, 8>& status, int direction, double bound, Manager& mgr, Queue& queue) const
    {
        if (bound == DBL_LIMIT || graph_offsets.size() <= 1) return 0;
        std::size_t N = graph_offsets.size() - 1, old = status.size();
        if (!status.resize(N)) return -199;
        std::fill(status.begin() + std::min(old, N), status.end(), NONE_ID);
        dense1D<signed char, 8> directions(N, static_cast<signed char>(direction));
        if (directions.size() != N) return -199;
        bool no_frozen_nodes = std::all_of(status.begin(), status.end(), [](unsigned s) { return s == 0; });

        auto measure_of = [&](unsigned i, unsigned j) {
            return __measure_with(measure_, pos, mgr, node_ids[i], node_ids[j], mgr_metric(mgr, node_ids[i]));
        };
        for (unsigned i = 0; i < N; ++i) {
            if (status[i] == NONE_ID) continue;
            for (unsigned p = graph_offsets[i]; p < graph_offsets[i + 1]; ++p) {
                unsigned j = graph_targets[p];
                double v = measure_of(i, j);
                if (v > bound && !queue.push(v, 0, i, j)) return -199;
            }
        }

        dense1D<unsigned, 8> frozen_neighbours;
        unsigned stamp_counter = 0;
        int changed = 0;
        while (!queue.empty()) {
            auto e = queue.pop();
            unsigned stamp = e.words[0], i = e.words[1], j = e.words[2];
            if (status[i] > stamp) continue;
            if (stamp < status[j] && status[j] < NONE_ID) continue;
            frozen_neighbours.clear();
            if (!no_frozen_nodes)
                for (unsigned p = graph_offsets[i]; p < graph_offsets[i + 1]; ++p)
                    if (status[graph_targets[p]] == NONE_ID && !frozen_neighbours.push_back(node_ids[graph_targets[p]]))
                        return -199;
            signed char sense = directions[i];
            if (!__bound_metric(pos, mgr, node_ids[i], node_ids[j], frozen_neighbours, bound, sense)) continue;

            directions[i] = sense;
            if (status[i] == 0) ++changed;
            status[i] = ++stamp_counter;
            for (unsigned p = graph_offsets[i]; p < graph_offsets[i + 1]; ++p) {
                unsigned n = graph_targets[p];
                double v = measure_of(i, n);
                if (!(v > bound)) continue;
                if (!queue.push(v, stamp_counter, i, n)) return -199;
                if (status[n] != NONE_ID && !queue.push(v, stamp_counter, n, i)) return -199;
            }
        }
        return changed;
    }

    // One attempt on the directed edge i to j (metric numbers); true when the metric of i changed.
    // `direction` receives the sense of this edge when it was 0.
    bool __bound_metric(dense2D<double> const& pos, Manager& mgr, unsigned i, unsigned j,
                        dense1D<unsigned, 8> const& frozen_neighbours, double bound, signed char& direction) const
    {
        signed char d = 0;
        double t0 = 0;
        Measure::get_metric_ratio(pos, mgr, i, j, bound, d, t0);
        if (!(t0 > 1e-12)) return false;
        if (direction == 0) direction = d;
        bool go = t0 > 0.001 && direction == d;
        double t = t0;
        metric_type metric_i = mgr_metric(mgr, i), metric_j = mgr_metric(mgr, j);
        if (go && !frozen_neighbours.empty()) {
            __shock_objective f{pos, mgr, i, metric_i, metric_j, measure_, bound, frozen_neighbours, direction};
            double f0 = f(0), fbest;
            if (f0 > 0 && f0 < DBL_LIMIT) {
                // Coarse samples first, then a halving search around the best of them.
                double s = t0 / 6, sample = 0;
                fbest = f0;
                t = 0;
                for (int k = 1; k <= 6; ++k) {
                    sample += s;
                    double v = f(sample);
                    if (v < fbest) fbest = v, t = sample;
                }
                double lo = t - s > 0 ? t - s : 0, hi = t + s < t0 ? t + s : t0;
                dichotomic_min(lo, t, hi, f, std::less<double>(), 0, 0.001, fbest);
            } else if (f0 == DBL_LIMIT) {
                fbest = 0;
            } else {
                fbest = f0;  // no excess towards the frozen nodes: left alone
            }
            go = t > 0.001 && f0 > fbest;
        }
        if (!go) return false;
        metric_type m;
        if (!__candidate(t, metric_i, metric_j, direction, true, m) || !__changed_enough(metric_i, m)) return false;
        mgr_store(mgr, i, m);
        return true;
    }

private:
    Measure const& measure_;

    // The metric of i moved by t towards that of j, never against `direction`. False when the
    // interpolation fails, or, if `strict`, the one-sided bound; otherwise that bound falls back on
    // the metric of i.
    static bool __candidate(double t, double hi, double hj, signed char direction, bool, double& h)
    {
        h = (hj - hi) * t + hi;
        if (!(h > 0 && h < DBL_LIMIT)) return false;
        if (direction == -1) h = std::min(h, hi);
        if (direction == 1) h = std::max(h, hi);
        return true;
    }
    template <unsigned K>
    static bool __candidate(double t, metric_anisotropic<K> const& Mi, metric_anisotropic<K> const& Mj,
                            signed char direction, bool strict, metric_anisotropic<K>& M)
    {
        if (!metric_anisotropic<K>::interpolation(t, Mi, Mj, M)) return false;
        if (direction != 1 && direction != -1) return true;
        metric_anisotropic<K> bounded;
        bool ok = direction == 1 ? metric_anisotropic<K>::maximum_metric(Mi, M, bounded)
                                 : metric_anisotropic<K>::minimum_metric(Mi, M, bounded);
        if (!ok && strict) return false;
        M = ok ? bounded : Mi;
        return true;
    }

    static bool __changed_enough(double old_h, double h)
    {
        return std::max(h, old_h) / std::min(h, old_h) > 1.000000000001;
    }
    // Only the diagonal entries are compared.
    template <unsigned K>
    static bool __changed_enough(metric_anisotropic<K> const& old_m, metric_anisotropic<K> const& m)
    {
        double r = 1;
        for (unsigned k = 0; k < K; ++k) {
            double a = m(k, k), b = old_m(k, k), q = std::max(a, b) / std::min(a, b);
            if (q > r) r = q;
        }
        return std::sqrt(r) > 1.000000000001;
    }
};

}  // namespace qv7
