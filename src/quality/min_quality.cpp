// The worst element of a mesh and its quality.
#include "quality/element_quality.h"
#include "quality/per_element.h"
#include "tessarium/quality.h"

#include <type_traits>

namespace qv7 {
namespace tessarium {

// Strictly below: the first of equal worst elements is kept, and a mesh with nothing below 1
// leaves e_min at NONE_ID.
int min_quality(dense2D<double> const& coords, dense2D<unsigned> const& connectM, element_type type, double& q_min,
                unsigned& e_min)
{
    q_min = 1.0;
    e_min = NONE_ID;
    if (connectM.cols() == 0) return 0;
    if (!check_IDs(connectM, type, __node_count(coords))) return -2;
    return __with_elfe(__narrow(type, connectM.rows()), -3, [&](auto elfe) {
        if (std::is_same<decltype(elfe), elfes::edge2>::value) return 0;
        elfe_algo::__for_each_element(connectM, elfe, [&](std::size_t j, unsigned const* nodes) {
            double q = elfe_algo::element_quality(coords, nodes, elfe);
            if (q_min > q) {
                q_min = q;
                e_min = static_cast<unsigned>(j);
            }
        });
        return 0;
    });
}

}  // namespace tessarium
}  // namespace qv7
