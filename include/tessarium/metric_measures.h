// Size maps measured on a mesh: the metric length of every edge, and the shock at every node.
//
// The metric length of an edge is its Euclidean length over the logarithmic mean of the sizes at
// its ends (for tensors, of the sizes along the edge): 1 is an edge of the wanted size. The shock
// of an edge is the growth of the size per unit of metric length, less one. Metrics are a size
// per node (dense1D) or a packed tensor per node (dense2D of 3 rows in 2D, 6 rows in 3D). As in
// the rest of this family, a result -k names the k-th argument.
#pragma once

#include "dense1D.h"
#include "dense2D.h"
#include "element_type.h"
#include "export.h"
#include "histogram.h"

TESSARIUM_EXPORT_BEGIN
namespace qv7 {
namespace tessarium {

// q = length / log_mean(h1, h2): the metric length of an edge of Euclidean `length` (0 for a mean
// not > 0). -2 when h1, -3 when h2 is not > 0, q untouched.
TESSARIUM_API int edge_quality(double length, double h1, double h2, double& q);

// Processes into `hist` the metric length of every edge of the mesh but those of
// `excluded_edges` (two rows, either node order, may be empty). `pos` has 2 or 3 rows. The number
// of edges, or: -1 `pos` rows; -2 bad node index in a connectivity; -4 (single matrix: cannot
// happen) as many types as matrices; -5 (single matrix: -4) some edge left out, its end having no
// metric or an invalid one, while all others were measured; -7 (single matrix: -6) bad node
// index in `excluded_edges`. The histogram is not reset.
TESSARIUM_API int edge_qualities(dense2D<double> const& pos, dense2D<unsigned> const& connectM, element_type FE_type,
                                 dense1D<double, 8> const& metrics, misc::histogram& hist,
                                 dense2D<unsigned> const& excluded_edges);
TESSARIUM_API int edge_qualities(dense2D<double> const& pos, dense2D<unsigned> const& connectM, element_type FE_type,
                                 dense2D<double> const& metrics, misc::histogram& hist,
                                 dense2D<unsigned> const& excluded_edges);
// The same over the matrices [connect_first, connect_last), FE_types[k] the type of matrix k.
TESSARIUM_API int edge_qualities(dense2D<double> const& pos, dense2D<unsigned> const* connect_first,
                                 dense2D<unsigned> const* connect_last, dense1D<int, 8> const& FE_types,
                                 dense1D<double, 8> const& metrics, misc::histogram& hist,
                                 dense2D<unsigned> const& excluded_edges);
TESSARIUM_API int edge_qualities(dense2D<double> const& pos, dense2D<unsigned> const* connect_first,
                                 dense2D<unsigned> const* connect_last, dense1D<int, 8> const& FE_types,
                                 dense2D<double> const& metrics, misc::histogram& hist,
                                 dense2D<unsigned> const& excluded_edges);

// vals[n] = the largest shock of the edges (two rows, one edge per column) at node n, and of what
// vals[n] held: vals is sized to the nodes of pos, keeping its entries, new ones 0. Metrics are not
// validated; an edge with an end beyond the metrics (or any edge, for tensors of fewer rows than
// the dimension of pos needs) is left out. 0; -1 `pos` rows; -2 bad node index in `edges`;
// -199 memory.
TESSARIUM_API int H_shock(dense2D<double> const& pos, dense2D<unsigned> const& edges, dense1D<double, 8> const& metrics,
                          dense1D<double, 8>& vals);
TESSARIUM_API int H_shock(dense2D<double> const& pos, dense2D<unsigned> const& edges, dense2D<double> const& metrics,
                          dense1D<double, 8>& vals);

}  // namespace tessarium
}  // namespace qv7
TESSARIUM_EXPORT_END
