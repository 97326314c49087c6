#include "tessarium/connectivity.h"

#include <algorithm>

namespace qv7 {
namespace tessarium {

namespace {

// One bit per element.
class bit_marks {
public:
    bool resize(std::size_t n)
    {
        if (!words_.resize(n / 32 + 1)) return false;
        std::fill(words_.begin(), words_.end(), 0u);
        return true;
    }
    bool test(unsigned i) const noexcept { return words_[i / 32] >> (i % 32) & 1u; }
    void set(unsigned i) noexcept { words_[i / 32] |= 1u << (i % 32); }

private:
    dense1D<unsigned, 8> words_;
};

// Replaces B by the columns of A in the given order, every entry v below the size of `map` turned
// into map[v] (no map: entries kept). The columns ahead are asked for early, since a breadth-first
// order reads them far apart. False when B could not be sized.
bool gather_columns(dense2D<unsigned> const& A, dense1D<unsigned, 8> const& order, dense1D<unsigned, 8> const& map,
                    dense2D<unsigned>& B)
{
    constexpr std::size_t prefetch_distance = 48;
    std::size_t rows = A.rows(), n = order.size(), mapped = map.size();
    if (!B.resize(rows, n)) return false;
    for (std::size_t i = 0; i < n; ++i) {
        if (i + prefetch_distance < n) __builtin_prefetch(A.col(order[i + prefetch_distance]));
        unsigned const* column = A.col(order[i]);
        unsigned* target = B.col(i);
        for (std::size_t r = 0; r < rows; ++r) target[r] = column[r] < mapped ? map[column[r]] : column[r];
    }
    return true;
}

}  // namespace

// Breadth first, with `indices` as its own queue: an element is marked when it first enters, which
// lists every element where its first entry would stand in a queue that took repeats, so that the
// order is the same and the queue needs no room of its own.
int get_subdomains(dense2D<unsigned> const& neighbors, dense1D<unsigned, 8>& indices, dense1D<unsigned, 8>& offsets)
{
    // Columns are read well ahead of their turn: a wide front reads them far apart.
    constexpr std::size_t prefetch_distance = 32;
    std::size_t elements = neighbors.cols(), rows = neighbors.rows();
    bit_marks visited;
    indices.clear();
    offsets.clear();
    bool reserved = indices.resize(elements);
    indices.clear();
    if (!reserved || !visited.resize(elements)) return -199;
    if (!offsets.push_back(0)) return -199;
    if (elements == 0) return 0;
    unsigned* queue = indices.data();  // room for every element reserved above
    std::size_t next = 0, end = 0;
    for (unsigned seed = 0; end < elements; ++seed) {
        while (visited.test(seed)) ++seed;
        visited.set(seed);
        queue[end++] = seed;
        for (; next < end; ++next) {
            if (next + prefetch_distance < end) __builtin_prefetch(neighbors.col(queue[next + prefetch_distance]));
            for (unsigned const *n = neighbors.col(queue[next]), *last = n + rows; n != last; ++n)
                if (*n < elements && !visited.test(*n)) {
                    visited.set(*n);
                    queue[end++] = *n;
                }
        }
        indices.resize(end);
        if (!offsets.push_back(static_cast<unsigned>(end))) return -199;
    }
    return 0;
}

int get_subdomains(dense2D<unsigned>& connectM, dense2D<unsigned>& neighbors, dense1D<unsigned, 8>& offsets)
{
    if (connectM.cols() != neighbors.cols()) return -2;
    dense1D<unsigned, 8> order;
    if (int code = get_subdomains(neighbors, order, offsets)) return code;
    // Past this point a failure leaves the arrays half reordered: they are cleared instead. The
    // neighbours are renumbered as they are moved.
    dense2D<unsigned> new_connect, new_neighbors;
    dense1D<unsigned, 8> inverse, keep;
    bool done = inverse.resize(order.size()) && gather_columns(connectM, order, keep, new_connect);
    if (done) {
        connectM = new_connect;
        for (unsigned i = 0; i < order.size(); ++i) inverse[order[i]] = i;
        done = gather_columns(neighbors, order, inverse, new_neighbors);
    }
    if (!done) {
        connectM.clear();
        neighbors.clear();
        offsets.clear();
        return -199;
    }
    neighbors = new_neighbors;
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
