#include "nodes/index_internal.h"
#include "tessarium/array_ops.h"
#include "tessarium/index_utilities.h"

namespace qv7 {
namespace tessarium {
namespace {

struct shifter {
    unsigned shift;
    void operator()(unsigned& v) const noexcept
    {
        if (v != NONE_ID) v += shift;
    }
};

}  // namespace

int shift_indices(dense1D<unsigned, 8>& IDs, int shift)
{
    if (shift == 0) return 0;
    shifter s{static_cast<unsigned>(shift)};
    for (unsigned& v : IDs) s(v);
    return 0;
}

int shift_indices(dense2D<unsigned>& connect, int shift, element_type type)
{
    if (shift == 0) return 0;
    if (type == ET_FACE_MIX || type == ET_SOLID_MIX)
        __for_each_index(connect, shifter{static_cast<unsigned>(shift)});
    else
        matscal::add(static_cast<unsigned>(shift), connect);
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
