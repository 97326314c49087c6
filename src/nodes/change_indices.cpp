#include "nodes/index_internal.h"
#include "tessarium/index_utilities.h"

namespace qv7 {
namespace tessarium {
namespace {

struct renumberer {
    unsigned const* map;
    std::size_t n;
    void operator()(unsigned& v) const noexcept
    {
        if (v < n) v = map[v];
    }
};

}  // namespace

void change_indices(dense1D<unsigned, 8>& IDs, dense1D<unsigned, 8> const& map)
{
    renumberer r{map.data(), map.size()};
    for (unsigned& v : IDs) r(v);
}

void change_indices(dense2D<unsigned>& connect, dense1D<unsigned, 8> const& map)
{
    __for_each_index(connect, renumberer{map.data(), map.size()});
}

}  // namespace tessarium
}  // namespace qv7
