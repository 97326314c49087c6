// The shape quality of every element of a mesh, in column order.
#include "connectivity/elfe_dispatch.h"
#include "quality/element_quality.h"
#include "search/node_count.h"
#include "tessarium/quality.h"

namespace qv7 {
namespace tessarium {

int shape_qualities(dense2D<double> const& coords, dense2D<unsigned> const& connectM, element_type type,
                    dense1D<double, 8>& qualities)
{
    qualities.clear();
    if (connectM.cols() == 0) return 0;
    if (!check_IDs(connectM, type, __node_count(coords))) return -2;
    if (!qualities.resize(connectM.cols())) return -199;
    std::fill(qualities.begin(), qualities.end(), 0.0);
    int code = __with_elfe(__narrow(type, connectM.rows()), -3, [&](auto elfe) {
        elfe_algo::__for_each_element(connectM, elfe, [&](std::size_t j, unsigned const* nodes) {
            qualities[j] = elfe_algo::element_quality(coords, nodes, elfe);
        });
        return 0;
    });
    if (code != 0) qualities.clear();
    return code;
}

}  // namespace tessarium
}  // namespace qv7
