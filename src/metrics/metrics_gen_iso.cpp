#include "connectivity/elfe_dispatch.h"
#include "tessarium/metrics.h"

#include <algorithm>
#include <cmath>

namespace qv7 {
namespace tessarium {
namespace {

double distance(dense2D<double> const& pos, unsigned a, unsigned b)
{
    double const* pa = pos.col(a);
    double const* pb = pos.col(b);
    double s = 0.0;
    for (std::size_t i = 0; i < pos.rows(); ++i) s += (pa[i] - pb[i]) * (pa[i] - pb[i]);
    return std::sqrt(s);
}

// How the lengths at a node are combined: kept shortest, kept longest, or summed as l^p.
enum class mean_kind { shortest, longest, power };

template <class Elfe>
int accumulate_edges(dense2D<double> const& pos, dense2D<unsigned> const& connectM, dense1D<double, 8>& metrics,
                     double power)
{
    dense1D<unsigned, 8> visits(metrics.size(), 0u);
    if (visits.size() != metrics.size()) return -199;
    mean_kind kind = power == 0.0 ? mean_kind::shortest : power == DBL_LIMIT ? mean_kind::longest : mean_kind::power;
    // What a node's first visit starts from, forgetting what the array held.
    double start = power > 0.0 ? 0.0 : DBL_LIMIT;
    for (std::size_t j = 0; j < connectM.cols(); ++j) {
        unsigned const* row = connectM.col(j);
        unsigned n_edges = Elfe::nbr_edges(row);
        for (unsigned e = 0; e < n_edges; ++e) {
            unsigned ends[2] = {};
            Elfe::copy_edge_nodes(e, row, ends);
            double l = distance(pos, ends[0], ends[1]);
            if (!(l > 0.0 && std::isfinite(l))) continue;
            double w = kind == mean_kind::power ? std::pow(l, power) : l;
            for (unsigned node : ends) {
                double& m = metrics[node];
                if (visits[node]++ == 0) m = start;
                if (kind == mean_kind::shortest)
                    m = std::min(m, l);
                else if (kind == mean_kind::longest)
                    m = std::max(m, l);
                else
                    m += w;
            }
        }
    }
    if (kind == mean_kind::power)
        for (std::size_t i = 0; i < metrics.size(); ++i)
            if (visits[i]) metrics[i] = std::pow(metrics[i] / visits[i], 1.0 / power);
    return 0;
}

// metrics grown to n entries, the new ones 0; on failure its size is put back.
bool grow_zeroed(dense1D<double, 8>& metrics, std::size_t n)
{
    std::size_t old = metrics.size();
    if (n <= old) return true;
    if (!metrics.resize(n)) {
        metrics.resize(old);
        return false;
    }
    std::fill(metrics.begin() + old, metrics.end(), 0.0);
    return true;
}

}  // namespace

int metrics_gen_iso(dense2D<double> const& pos, dense2D<unsigned> const& connectM, element_type FE_type,
                    dense1D<double, 8>& metrics, double power)
{
    if (connectM.empty()) return 0;
    if (FE_type < 0 || FE_type >= static_cast<int>(nbr_element_types)) return -3;
    element_type type = __narrow(FE_type, connectM.rows());
    if (element_dim(type) > pos.rows()) return -1;
    unsigned n_nodes = static_cast<unsigned>(std::min<std::size_t>(pos.cols(), NONE_ID - 1));
    if (!check_IDs(connectM, type, n_nodes)) return -2;
    if (!(power >= 0.0)) return -5;
    if (!grow_zeroed(metrics, pos.cols())) return -199;
    return __with_elfe(type, -3,
                       [&](auto elfe) { return accumulate_edges<decltype(elfe)>(pos, connectM, metrics, power); });
}

}  // namespace tessarium
}  // namespace qv7
