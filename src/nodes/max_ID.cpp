#include "nodes/index_internal.h"
#include "tessarium/index_utilities.h"

namespace qv7 {
namespace {

struct max_tracker {
    unsigned largest = 0;
    void operator()(unsigned v) noexcept
    {
        if (v != NONE_ID && v > largest) largest = v;
    }
};

}  // namespace

unsigned max_ID(dense1D<unsigned, 8> const& IDs) noexcept
{
    if (IDs.empty()) return NONE_ID;
    max_tracker m;
    for (unsigned v : IDs) m(v);
    return m.largest;
}

unsigned max_ID(dense2D<unsigned> const& connect) noexcept
{
    if (connect.empty()) return NONE_ID;
    max_tracker m;
    __for_each_index(connect, m);
    return m.largest;
}

namespace tessarium {

unsigned max_ID(dense1D<unsigned, 8> const& IDs) noexcept
{
    return qv7::max_ID(IDs);
}
unsigned max_ID(dense2D<unsigned> const& connect) noexcept
{
    return qv7::max_ID(connect);
}

}  // namespace tessarium
}  // namespace qv7
