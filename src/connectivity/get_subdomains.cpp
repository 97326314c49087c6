#include "tessarium/array_ops.h"
#include "tessarium/connectivity.h"
#include "tessarium/index_utilities.h"

#include <algorithm>

namespace qv7 {
namespace tessarium {

namespace {

// First in, first out, in one array whose consumed front is dropped once it is the larger half.
class fifo {
public:
    bool empty() const noexcept { return front_ == items_.size(); }
    bool push(unsigned v) { return items_.push_back(v); }
    unsigned pop() noexcept
    {
        unsigned v = items_[front_++];
        if (front_ == items_.size()) {
            items_.clear();
            front_ = 0;
        } else if (front_ > items_.size() / 2 && front_ > 1024) {
            std::copy(items_.begin() + front_, items_.end(), items_.begin());
            items_.resize(items_.size() - front_);
            front_ = 0;
        }
        return v;
    }

private:
    dense1D<unsigned, 8> items_;
    std::size_t front_ = 0;
};

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

}  // namespace

int get_subdomains(dense2D<unsigned> const& neighbors, dense1D<unsigned, 8>& indices, dense1D<unsigned, 8>& offsets)
{
    std::size_t elements = neighbors.cols(), rows = neighbors.rows();
    bit_marks visited;
    fifo queue;
    indices.clear();
    offsets.clear();
    bool reserved = indices.resize(elements);
    indices.clear();
    if (!reserved || !visited.resize(elements)) return -199;
    if (!offsets.push_back(0)) return -199;
    if (elements == 0) return 0;
    for (unsigned seed = 0;; ++seed) {
        while (visited.test(seed)) ++seed;
        if (!queue.push(seed)) return -199;
        while (!queue.empty()) {
            unsigned e = queue.pop();
            if (visited.test(e)) continue;
            visited.set(e);
            indices.push_back(e);  // room reserved above
            for (unsigned const *n = neighbors.col(e), *end = n + rows; n != end; ++n)
                if (*n < elements && !visited.test(*n) && !queue.push(*n)) return -199;
        }
        if (!offsets.push_back(static_cast<unsigned>(indices.size()))) return -199;
        if (indices.size() == elements) return 0;
    }
}

int get_subdomains(dense2D<unsigned>& connectM, dense2D<unsigned>& neighbors, dense1D<unsigned, 8>& offsets)
{
    if (connectM.cols() != neighbors.cols()) return -2;
    dense1D<unsigned, 8> order;
    if (int code = get_subdomains(neighbors, order, offsets)) return code;
    // Past this point a failure leaves the arrays half reordered: they are cleared instead.
    dense2D<unsigned> new_connect, new_neighbors;
    dense1D<unsigned, 8> inverse;
    bool done = matmat::push_back(connectM, order, new_connect);
    if (done) connectM = new_connect;
    done = done && matmat::push_back(neighbors, order, new_neighbors);
    if (done) neighbors = new_neighbors;
    if (!done || !inverse.resize(order.size())) {
        connectM.clear();
        neighbors.clear();
        offsets.clear();
        return -199;
    }
    for (unsigned i = 0; i < order.size(); ++i) inverse[order[i]] = i;
    change_indices(neighbors, inverse);
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
