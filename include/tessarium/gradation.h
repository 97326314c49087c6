// Bounding the gradation of a size map over the edges of a mesh, in place.
//
// Every function takes the node coordinates (2 or 3 rows), the connectivity and its type, a list
// of nodes, whether the listed nodes are the frozen ones (true) or the only free ones (false), the
// allowed sense of change (0 either, decided per node by its first change; 1 sizes only grow; -1
// sizes only shrink; any other value moves nothing), the bound (DBL_LIMIT: no bound), and the size
// map: one size per node, or one packed tensor per column (3 rows with 2D coordinates, 6 with 3D).
// The worst edge is always treated first. Result: the number of nodes changed; -1 `pos` rows;
// -2 bad connectivity; -4 bad entry in `node_list` (NONE_ID included); -7 negative bound; -8 metric
// array too small or of the wrong rows; -199 memory, the changes made so far kept.
#pragma once

#include "dense2D.h"
#include "element_type.h"
#include "export.h"

TESSARIUM_EXPORT_BEGIN
namespace qv7 {
namespace tessarium {

// Bounds the size variation |h_j - h_i| / L of every edge.
TESSARIUM_API int bound_metric_variations(dense2D<double> const& pos, dense2D<unsigned> const& connectM,
                                          element_type FE_type, dense1D<unsigned, 8> const& node_list,
                                          bool list_is_frozen, int direction, double bound,
                                          dense1D<double, 8>& metrics);
TESSARIUM_API int bound_metric_variations(dense2D<double> const& pos, dense2D<unsigned> const& connectM,
                                          element_type FE_type, dense1D<unsigned, 8> const& node_list,
                                          bool list_is_frozen, int direction, double bound, dense2D<double>& metrics);

// Bounds the H-shock of every edge: the growth of the size per unit of metric length, less 1.
TESSARIUM_API int bound_metric_gradations(dense2D<double> const& pos, dense2D<unsigned> const& connectM,
                                          element_type FE_type, dense1D<unsigned, 8> const& node_list,
                                          bool list_is_frozen, int direction, double bound,
                                          dense1D<double, 8>& metrics);
TESSARIUM_API int bound_metric_gradations(dense2D<double> const& pos, dense2D<unsigned> const& connectM,
                                          element_type FE_type, dense1D<unsigned, 8> const& node_list,
                                          bool list_is_frozen, int direction, double bound, dense2D<double>& metrics);

}  // namespace tessarium
}  // namespace qv7
TESSARIUM_EXPORT_END
