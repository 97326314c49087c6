#include "tessarium/connectivity.h"
#include "tessarium/index_utilities.h"

#include <algorithm>

namespace qv7 {
namespace tessarium {

int get_ancestors(dense2D<unsigned> const& connectM, dense1D<unsigned, 8>& ancestors)
{
    if (connectM.empty()) return 0;
    if (ancestors.empty()) {
        if (!ancestors.resize(std::size_t(max_ID(connectM)) + 1)) {
            ancestors.clear();
            return -199;
        }
        std::fill(ancestors.begin(), ancestors.end(), NONE_ID);
    }
    // Every row counts, whatever the element kind; the last element that holds a node wins.
    std::size_t size = ancestors.size();
    for (std::size_t e = 0; e < connectM.cols(); ++e) {
        unsigned const* row = connectM.col(e);
        for (std::size_t r = 0; r < connectM.rows(); ++r)
            if (row[r] != NONE_ID && row[r] < size) ancestors[row[r]] = static_cast<unsigned>(e);
    }
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
