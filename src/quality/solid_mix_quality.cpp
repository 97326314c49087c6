// The quality of a mixed solid column, measured as its kind.
#include "quality/pyramid5_quality.h"

namespace qv7 {
namespace elfes {

double solid_mix::geometric_quality(dense2D<double> const& coords, unsigned const* nodes) noexcept
{
    double warp;
    switch (kind(nodes)) {
    case TETRA:
        return tetra4::geometric_quality(coords, nodes);
    case PYRAMID:
        return pyramid5::geometric_quality(coords, nodes, warp);
    case WEDGE:
        return wedge6::geometric_quality(coords, nodes);
    default:
        return hexa8::geometric_quality(coords, nodes);
    }
}

}  // namespace elfes
}  // namespace qv7
