// The shape quality of every element of a mesh, in column order.
#include "quality/element_quality.h"
#include "quality/per_element.h"
#include "tessarium/quality.h"

namespace qv7 {
namespace tessarium {

int shape_qualities(dense2D<double> const& coords, dense2D<unsigned> const& connectM, element_type type,
                    dense1D<double, 8>& qualities)
{
    return __per_element_values(coords, connectM, type, qualities, [&](unsigned const* nodes, auto elfe) {
        return elfe_algo::element_quality(coords, nodes, elfe);
    });
}

}  // namespace tessarium
}  // namespace qv7
