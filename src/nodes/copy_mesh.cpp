#include "nodes/node_moves.h"
#include "tessarium/array_ops.h"
#include "tessarium/transforms.h"

#include <algorithm>

namespace qv7 {
namespace tessarium {
namespace {

using IDs = dense1D<unsigned, 8>;
using vec2 = vector_fixed<double, 2>;
using vec3 = vector_fixed<double, 3>;

template <unsigned D>
vector_fixed<double, D> scaled(double f, vector_fixed<double, D> const& v)
{
    vector_fixed<double, D> out;
    for (unsigned k = 0; k < D; ++k) out[k] = f * v[k];
    return out;
}

// Copies k = 1 .. nbr_copies, each placed by place(pos, local_connectivity, k).
template <class Place>
int __copy_pattern(dense2D<double>& pos, dense2D<unsigned>& connectM, unsigned nbr_copies,
                   dense2D<unsigned> const& connect, Place&& place)
{
    dense2D<unsigned> local;
    if (pos.empty() || nbr_copies == 0) return 0;
    for (unsigned k = 0; k < nbr_copies; ++k) {
        if (int status = copy_mesh(pos, local, connect)) return status;
        place(pos, local, double(k) + 1.0);
        matmat::push_back(local, connectM);
    }
    return 0;
}

}  // namespace

int copy_mesh(dense2D<double>& pos, dense2D<unsigned>& connectM, dense2D<unsigned> const& connect)
{
    std::size_t n = pos.cols();
    IDs ids = __nodes_of(connect);
    // Numbers beyond the node set name nothing to copy; they stay as they are.
    ids.resize(std::remove_if(ids.begin(), ids.end(), [n](unsigned id) { return id >= n; }) - ids.begin());
    if (!matmat::push_back(pos, ids, pos)) return -199;
    if (!connectM.copy(connect)) return -199;
    IDs map(n);
    if (map.size() != n) return -199;
    for (std::size_t k = 0; k < ids.size(); ++k) map[ids[k]] = static_cast<unsigned>(n + k);
    change_indices(connectM, map);
    return 0;
}

// The shared handle keeps the source elements fixed even when connect is connectM itself.
int copy_mesh(dense2D<double>& pos, dense2D<unsigned>& connectM, vec2 const& T, vec2 const& C, double angle,
              unsigned nbr_copies, dense2D<unsigned> const& connect)
{
    dense2D<unsigned> source = connect;
    return __copy_pattern(pos, connectM, nbr_copies, source,
                          [&](dense2D<double>& p, dense2D<unsigned> const& c, double f) {
                              rotate(p, C, f * angle, c);
                              translate(p, scaled(f, T), c);
                          });
}

int copy_mesh(dense2D<double>& pos, dense2D<unsigned>& connectM, vec3 const& T, vec3 const& C, vec3 const& R,
              unsigned nbr_copies, dense2D<unsigned> const& connect)
{
    return __copy_pattern(pos, connectM, nbr_copies, connect,
                          [&](dense2D<double>& p, dense2D<unsigned> const& c, double f) {
                              rotate(p, C, scaled(f, R), c);
                              translate(p, scaled(f, T), c);
                          });
}

}  // namespace tessarium
}  // namespace qv7
