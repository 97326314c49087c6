#include "connectivity/graph.h"
#include "metrics/H_shock_minimiser.h"
#include "nodes/index_internal.h"
#include "tessarium/gradation.h"

#include <numeric>

namespace qv7 {
namespace {

std::size_t metric_count(dense1D<double, 8> const& metrics)
{
    return metrics.size();
}
std::size_t metric_count(dense2D<double> const& metrics)
{
    return metrics.cols();
}
bool metric_rows_fit(dense1D<double, 8> const&, std::size_t)
{
    return true;
}
bool metric_rows_fit(dense2D<double> const& metrics, std::size_t dim)
{
    return metrics.rows() == (dim == 2 ? 3 : 6);
}

// 1 to go on, 0 when there is nothing to do, or the code of the first refused argument.
template <class Metrics>
int check_arguments(dense2D<double> const& pos, dense2D<unsigned> const& connectM, element_type FE_type,
                    dense1D<unsigned, 8> const& node_list, double bound, Metrics const& metrics)
{
    if (bound == DBL_LIMIT || connectM.empty()) return 0;
    if (pos.rows() != 2 && pos.rows() != 3) return -1;
    unsigned nodes = pos.cols() < NONE_ID ? unsigned(pos.cols()) : NONE_ID - 1;
    if (!tessarium::check_IDs(connectM, FE_type, nodes)) return -2;
    if (!tessarium::check_IDs(node_list, nodes) ||
        std::find(node_list.begin(), node_list.end(), NONE_ID) != node_list.end())
        return -4;
    if (0 > bound) return -7;
    if (!metric_rows_fit(metrics, pos.rows())) return -8;
    if (max_ID(connectM) >= metric_count(metrics)) return -8;
    return 1;
}

template <class Measure, class Manager, class Metrics>
int bound_with(dense2D<double> const& pos, dense2D<unsigned> const& connectM, dense1D<unsigned, 8> const& node_list,
               bool list_is_frozen, int direction, double bound, Metrics& metrics)
{
    Manager mgr(metrics);
    std::size_t n = pos.cols();
    dense1D<unsigned, 8> status(n, list_is_frozen ? 0u : NONE_ID), node_ids(n);
    if (status.size() != n || node_ids.size() != n) return -199;
    std::iota(node_ids.begin(), node_ids.end(), 0u);
    graph g;
    {
        dense1D<unsigned, 8> offsets, elements;
        int rc = get_connected_elements(connectM, offsets, elements);
        if (rc < 0) return rc;
        rc = get_graph(connectM, offsets, elements, g.graph_offsets, g.graph_targets);
        if (rc < 0) return rc;
    }
    for (unsigned v : node_list) status[v] = list_is_frozen ? NONE_ID : 0;
    Measure measure;
    return H_shock_minimiser<Measure, Manager>(measure).bound_metrics(pos, g.graph_offsets, g.graph_targets, node_ids,
                                                                      status, direction, bound, mgr);
}

template <template <class> class Measure>
int bound_sizes(dense2D<double> const& pos, dense2D<unsigned> const& connectM, element_type FE_type,
                dense1D<unsigned, 8> const& node_list, bool list_is_frozen, int direction, double bound,
                dense1D<double, 8>& metrics)
{
    int rc = check_arguments(pos, connectM, FE_type, node_list, bound, metrics);
    if (rc <= 0) return rc;
    if (pos.rows() == 2)
        return bound_with<Measure<length_measure_isotropic<2>>, metrics_mgr_isotropic<length_measure_isotropic<2>>>(
            pos, connectM, node_list, list_is_frozen, direction, bound, metrics);
    return bound_with<Measure<length_measure_isotropic<3>>, metrics_mgr_isotropic<length_measure_isotropic<3>>>(
        pos, connectM, node_list, list_is_frozen, direction, bound, metrics);
}

template <template <class> class Measure>
int bound_tensors(dense2D<double> const& pos, dense2D<unsigned> const& connectM, element_type FE_type,
                  dense1D<unsigned, 8> const& node_list, bool list_is_frozen, int direction, double bound,
                  dense2D<double>& metrics)
{
    int rc = check_arguments(pos, connectM, FE_type, node_list, bound, metrics);
    if (rc <= 0) return rc;
    if (pos.rows() == 2)
        return bound_with<Measure<length_measure_anisotropic<2>>,
                          metrics_mgr_anisotropic<length_measure_anisotropic<2>>>(
            pos, connectM, node_list, list_is_frozen, direction, bound, metrics);
    return bound_with<Measure<length_measure_anisotropic<3>>, metrics_mgr_anisotropic<length_measure_anisotropic<3>>>(
        pos, connectM, node_list, list_is_frozen, direction, bound, metrics);
}

}  // namespace

namespace tessarium {

int bound_metric_variations(dense2D<double> const& pos, dense2D<unsigned> const& connectM, element_type FE_type,
                            dense1D<unsigned, 8> const& node_list, bool list_is_frozen, int direction, double bound,
                            dense1D<double, 8>& metrics)
{
    return bound_sizes<H_variation_measure>(pos, connectM, FE_type, node_list, list_is_frozen, direction, bound,
                                            metrics);
}

int bound_metric_variations(dense2D<double> const& pos, dense2D<unsigned> const& connectM, element_type FE_type,
                            dense1D<unsigned, 8> const& node_list, bool list_is_frozen, int direction, double bound,
                            dense2D<double>& metrics)
{
    return bound_tensors<H_variation_measure>(pos, connectM, FE_type, node_list, list_is_frozen, direction, bound,
                                              metrics);
}

int bound_metric_gradations(dense2D<double> const& pos, dense2D<unsigned> const& connectM, element_type FE_type,
                            dense1D<unsigned, 8> const& node_list, bool list_is_frozen, int direction, double bound,
                            dense1D<double, 8>& metrics)
{
    return bound_sizes<H_shock_measure>(pos, connectM, FE_type, node_list, list_is_frozen, direction, bound, metrics);
}

int bound_metric_gradations(dense2D<double> const& pos, dense2D<unsigned> const& connectM, element_type FE_type,
                            dense1D<unsigned, 8> const& node_list, bool list_is_frozen, int direction, double bound,
                            dense2D<double>& metrics)
{
    return bound_tensors<H_shock_measure>(pos, connectM, FE_type, node_list, list_is_frozen, direction, bound, metrics);
}

}  // namespace tessarium
}  // namespace qv7
