#include "connectivity/edge_pairs.h"

#include "connectivity/elfe_dispatch.h"
#include "core/radix_sort.h"
#include "core/set_subtract.h"

#include <algorithm>

namespace qv7 {
namespace tessarium {
namespace {

// Below this many pairs the counters of a radix sort cost more than they save.
constexpr std::size_t radix_threshold = 4096;

unsigned bit_width(std::uint64_t v) noexcept
{
    return v ? 64 - __builtin_clzll(v) : 0;
}

// Sorts the pairs and keeps each once; returns how many are left. The radix sort ranks a pair by
// its two numbers packed just as wide as the largest of each needs.
std::size_t sort_unique(edge_pair* pairs, std::size_t n)
{
    std::uint64_t all = 0;
    for (std::size_t i = 0; i < n; ++i) all |= pairs[i];
    unsigned low_bits = bit_width(__second(all)), bits = bit_width(__first(all)) + low_bits;
    auto rank = [low_bits](edge_pair e) { return std::uint64_t(__first(e)) << low_bits | __second(e); };
    if (n < radix_threshold || !radix_sort(pairs, n, bits, rank)) std::sort(pairs, pairs + n);
    return std::unique(pairs, pairs + n) - pairs;
}

// The linear shape whose edges a type has: higher-order elements by their corner rows. ET_NONE
// for the types that yield no edges.
element_type edge_shape(element_type type) noexcept
{
    switch (type) {
    case ET_EDGE3:
        return ET_EDGE2;
    case ET_FACE_T6:
        return ET_FACE_T3;
    case ET_FACE_Q8:
    case ET_FACE_Q9:
        return ET_FACE_Q4;
    case ET_TETRA10:
        return ET_TETRA4;
    case ET_PYRAMID14:
        return ET_PYRAMID5;
    case ET_WEDGE18:
        return ET_WEDGE6;
    case ET_HEXA27:
        return ET_HEXA8;
    case ET_PYRAMID13:
    case ET_WEDGE15:
    case ET_HEXA20:
        return ET_NONE;
    default:
        return type;
    }
}

template <class Elfe>
int get_edges(dense2D<unsigned> const& connectM, dense1D<edge_pair, 8>& pairs, Elfe)
{
    if (connectM.rows() < Elfe::nbr_rows) return 0;
    std::size_t old = pairs.size(), room;
    if (__builtin_mul_overflow(connectM.cols(), Elfe::max_edges, &room) || room > std::size_t(-1) / 16 - old ||
        !pairs.resize(old + room)) {
        pairs.resize(old);
        return -199;
    }
    edge_pair* out = pairs.data() + old;
    for (std::size_t j = 0; j < connectM.cols(); ++j) {
        unsigned const* row = connectM.col(j);
        for (unsigned e = 0, n = Elfe::nbr_edges(row); e < n; ++e) {
            unsigned ab[2];
            if (Elfe::copy_edge_nodes(e, row, ab) != ab) *out++ = __edge_pair(ab[0], ab[1]);
        }
    }
    pairs.resize(sort_unique(pairs.data(), out - pairs.data()));
    return 0;
}

}  // namespace

int __get_edges(dense2D<unsigned> const& connectM, element_type type, dense1D<edge_pair, 8>& pairs)
{
    type = __narrow(type, connectM.rows());
    if (type < ET_EDGE2 || type > ET_HEXA27) return 0;
    return __with_elfe(edge_shape(type), 0, [&](auto elfe) { return get_edges(connectM, pairs, elfe); });
}

void __remove_edges(dense2D<unsigned> const& connectM, dense1D<edge_pair, 8>& pairs)
{
    if (connectM.empty() || connectM.rows() < 2) return;
    dense1D<edge_pair, 8> removed;
    if (!removed.resize(connectM.cols())) return;
    for (std::size_t j = 0; j < connectM.cols(); ++j) removed[j] = __edge_pair(connectM(0, j), connectM(1, j));
    removed.resize(sort_unique(removed.data(), removed.size()));
    pairs.resize(set_subtract(pairs.begin(), pairs.end(), removed.begin(), removed.end()) - pairs.begin());
}

}  // namespace tessarium
}  // namespace qv7
