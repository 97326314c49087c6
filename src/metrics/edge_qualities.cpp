#include "connectivity/edge_pairs.h"
#include "core/element_type_value.h"
#include "metrics/metrics_mgr.h"
#include "search/node_count.h"
#include "tessarium/metric_measures.h"

#include <climits>
#include <type_traits>

namespace qv7 {
namespace tessarium {
namespace {

bool is_valid(metric_isotropic h) noexcept
{
    return h > 0.0;
}
template <unsigned D>
bool is_valid(metric_anisotropic<D> const& M) noexcept
{
    return M.is_valid();
}

// The validity of each node's metric, tested once: for a tensor the test is an eigenvalue solve,
// and a node is the end of many edges. Sizes, and tensors without memory for the marks, are
// tested at every call.
template <class Manager>
class validity_memo {
public:
    explicit validity_memo(Manager const& mgr) : mgr_(mgr)
    {
        if (std::is_same<typename Manager::metric_type, metric_isotropic>::value) return;
        if (marks_.resize(mgr.size()))
            std::fill(marks_.begin(), marks_.end(), untested);
        else
            marks_.clear();
    }
    bool operator()(std::size_t node)
    {
        if (marks_.empty()) return is_valid(mgr_.get_metric(node));
        if (marks_[node] == untested) marks_[node] = is_valid(mgr_.get_metric(node)) ? valid : invalid;
        return marks_[node] == valid;
    }

private:
    enum : unsigned char { untested, valid, invalid };
    Manager const& mgr_;
    dense1D<unsigned char, 8> marks_;
};

template <unsigned D>
double edge_length(dense2D<double> const& pos, metrics_mgr_isotropic<length_measure_isotropic<D>> const& mgr,
                   unsigned a, unsigned b) noexcept
{
    return length_measure_isotropic<D>::compute_length(__edge_vector<D>(pos, b, a), mgr.get_metric(a),
                                                       mgr.get_metric(b));
}
template <unsigned D>
double edge_length(dense2D<double> const& pos, metrics_mgr_anisotropic<length_measure_anisotropic<D>> const& mgr,
                   unsigned a, unsigned b) noexcept
{
    double l1, l2;
    return length_measure_anisotropic<D>::compute_length(__edge_vector<D>(pos, a, b), mgr.get_metric(a),
                                                         mgr.get_metric(b), false, l1, l2);
}

// Every edge whose ends have valid metrics reaches the histogram; -5 when some did not.
template <unsigned D, class Manager>
int measure_edges(dense2D<double> const& pos, dense1D<edge_pair, 8> const& pairs, Manager const& mgr,
                  misc::histogram& hist)
{
    std::size_t const n = std::min(pos.cols(), mgr.size());
    bool failed = false;
    validity_memo<Manager> valid(mgr);
    for (edge_pair e : pairs) {
        unsigned a = __first(e), b = __second(e);
        if (a >= n || b >= n || !valid(a) || !valid(b)) {
            failed = true;
            continue;
        }
        hist.process(edge_length<D>(pos, mgr, a, b));
    }
    if (failed) return -5;
    return pairs.size() < INT_MAX ? int(pairs.size()) : INT_MAX;
}

template <class Metrics>
int qualities(dense2D<double> const& pos, dense2D<unsigned> const* first, dense2D<unsigned> const* last,
              dense1D<int, 8> const& types, Metrics const& metrics, misc::histogram& hist,
              dense2D<unsigned> const& excluded_edges)
{
    if (first == last) return 0;
    if (pos.rows() != 2 && pos.rows() != 3) return -1;
    if (last < first || std::size_t(last - first) != types.size()) return -4;
    unsigned nodes = __node_count(pos);
    for (std::size_t k = 0; k < types.size(); ++k)
        if (!__is_element_type(types[k]) || !check_IDs(first[k], element_type(types[k]), nodes)) return -2;
    if (!check_IDs(excluded_edges, ET_EDGE2, nodes)) return -7;
    dense1D<edge_pair, 8> pairs;
    for (std::size_t k = 0; k < types.size(); ++k)
        if (__get_edges(first[k], element_type(types[k]), pairs) < 0) break;
    __remove_edges(excluded_edges, pairs);
    if (pos.rows() == 2) return measure_edges<2>(pos, pairs, __metrics_mgr<2>(metrics), hist);
    return measure_edges<3>(pos, pairs, __metrics_mgr<3>(metrics), hist);
}

// A run of one matrix, whose codes past -3 move up by one: its arguments are one fewer.
template <class Metrics>
int single_matrix(dense2D<double> const& pos, dense2D<unsigned> const& connectM, element_type type,
                  Metrics const& metrics, misc::histogram& hist, dense2D<unsigned> const& excluded_edges)
{
    dense1D<int, 8> types(1, int(type));
    if (types.size() != 1) return -199;
    int result = qualities(pos, &connectM, &connectM + 1, types, metrics, hist, excluded_edges);
    return result == -5 || result == -7 ? result + 1 : result;
}

}  // namespace

int edge_qualities(dense2D<double> const& pos, dense2D<unsigned> const& connectM, element_type FE_type,
                   dense1D<double, 8> const& metrics, misc::histogram& hist, dense2D<unsigned> const& excluded_edges)
{
    return single_matrix(pos, connectM, FE_type, metrics, hist, excluded_edges);
}

int edge_qualities(dense2D<double> const& pos, dense2D<unsigned> const& connectM, element_type FE_type,
                   dense2D<double> const& metrics, misc::histogram& hist, dense2D<unsigned> const& excluded_edges)
{
    return single_matrix(pos, connectM, FE_type, metrics, hist, excluded_edges);
}

int edge_qualities(dense2D<double> const& pos, dense2D<unsigned> const* connect_first,
                   dense2D<unsigned> const* connect_last, dense1D<int, 8> const& FE_types,
                   dense1D<double, 8> const& metrics, misc::histogram& hist, dense2D<unsigned> const& excluded_edges)
{
    return qualities(pos, connect_first, connect_last, FE_types, metrics, hist, excluded_edges);
}

int edge_qualities(dense2D<double> const& pos, dense2D<unsigned> const* connect_first,
                   dense2D<unsigned> const* connect_last, dense1D<int, 8> const& FE_types,
                   dense2D<double> const& metrics, misc::histogram& hist, dense2D<unsigned> const& excluded_edges)
{
    return qualities(pos, connect_first, connect_last, FE_types, metrics, hist, excluded_edges);
}

}  // namespace tessarium
}  // namespace qv7
