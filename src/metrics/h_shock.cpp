#include "metrics/h_shock_measures.h"
#include "search/node_count.h"
#include "tessarium/metric_measures.h"

namespace qv7 {
namespace tessarium {
namespace {

template <class Metrics>
int shock(dense2D<double> const& pos, dense2D<unsigned> const& edges, Metrics const& metrics, dense1D<double, 8>& vals)
{
    if (edges.empty()) return 0;
    if (pos.rows() != 2 && pos.rows() != 3) return -1;
    if (!check_IDs(edges, ET_EDGE2, __node_count(pos))) return -2;
    std::size_t old = vals.size();
    if (!vals.resize(pos.cols())) {
        vals.resize(old);
        return -199;
    }
    if (vals.size() > old) std::fill(vals.begin() + old, vals.end(), 0.0);
    if (pos.rows() == 2) {
        auto mgr = __metrics_mgr<2>(metrics);
        H_shock_measure<typename decltype(mgr)::length_measure>().node_vals(pos, edges, mgr, vals);
    } else {
        auto mgr = __metrics_mgr<3>(metrics);
        H_shock_measure<typename decltype(mgr)::length_measure>().node_vals(pos, edges, mgr, vals);
    }
    return 0;
}

}  // namespace

int H_shock(dense2D<double> const& pos, dense2D<unsigned> const& edges, dense1D<double, 8> const& metrics,
            dense1D<double, 8>& vals)
{
    return shock(pos, edges, metrics, vals);
}

int H_shock(dense2D<double> const& pos, dense2D<unsigned> const& edges, dense2D<double> const& metrics,
            dense1D<double, 8>& vals)
{
    return shock(pos, edges, metrics, vals);
}

}  // namespace tessarium
}  // namespace qv7
