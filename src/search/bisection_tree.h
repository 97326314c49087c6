// A k-d tree over columns of a coordinate matrix, storing node numbers only, in one slot array.
#pragma once

#include "search/point_tests.h"
#include "search/predicates.h"
#include "search/rand_gen.h"
#include "tessarium/dynamic_array.h"
#include "tessarium/element_type.h"
#include "tessarium/fixed.h"

#include <cmath>
#include <cstddef>
#include <vector>

namespace qv7 {

template <class Matrix, unsigned D>
class bisection_tree {
public:
    using point_type = vector_fixed<double, D>;
    static constexpr double no_distance = 1.7976931348623157e308;

    explicit bisection_tree(Matrix const* matrix = nullptr) : coords(matrix), gen(1) {}

    std::size_t size() const noexcept { return nodes.items.cols(); }
    bool empty() const noexcept { return size() == 0; }

    // Room for n records (and n released-slot flags) without further reallocation.
    void __reserve(std::size_t n)
    {
        std::size_t rows = nodes.items.rows(), cols = nodes.items.cols();
        if (nodes.free_flags.resize((n + 63) / 64)) nodes.free_flags.clear();
        if (cols < n && nodes.items.resize(3, n)) nodes.items.resize(rows, cols);
    }

    bool insert(unsigned node)
    {
        if (!coords || node >= coords->cols()) return false;
        std::size_t slot = __take_slot();
        unsigned const record[3] = {node, NONE_ID, NONE_ID};
        if (!nodes.__construct(slot, record)) return true;
        if (slot == 0) return true;

        double const* X = coords->col(0);
        std::size_t ld = coords->ld();
        double const* c = X + node * ld;
        std::size_t at = 0;
        unsigned axis = 0;
        for (;;) {
            unsigned* r = nodes[at];
            unsigned& child = X[r[0] * ld + axis] > c[axis] ? r[1] : r[2];
            if (child >= slot) {
                child = static_cast<unsigned>(slot);
                return true;
            }
            at = child;
            axis = __next(axis);
        }
    }

    // Renumbers the slots in the order in which __search visits them (record, right subtree, left
    // subtree), so that a search reads neighbouring records. The shape, and so every search result,
    // stays the same. Left as it is if the working arrays cannot be had.
    void __relayout()
    {
        constexpr unsigned long no_parent = ~0ul;
        std::size_t n = size();
        if (n < 2 || !nodes.free_slots.empty()) return;
        dense2D<unsigned> placed;
        dense1D<unsigned long, 8> stack;  // pairs: an old slot, and the entry of placed that links to it
        if (!placed.resize(3, n) || !stack.push_back(0) || !stack.push_back(no_parent)) return;
        unsigned* out = placed.data();
        for (unsigned long next = 0; !stack.empty(); ++next) {
            unsigned long link = stack[stack.size() - 1], slot = stack[stack.size() - 2];
            stack.resize(stack.size() - 2);
            unsigned const* r = nodes[slot];
            if (link != no_parent) out[link] = static_cast<unsigned>(next);
            out[3 * next] = r[0];
            out[3 * next + 1] = out[3 * next + 2] = NONE_ID;
            for (unsigned side : {1u, 2u}) {  // the right child ends on top: it comes next
                if (r[side] == NONE_ID) continue;
                if (!stack.push_back(r[side]) || !stack.push_back(3 * next + side)) return;
            }
        }
        nodes.items = placed;
    }

    unsigned find_closest(point_type const& point) const { return find_closest_if(point, yes_predicate<unsigned>()); }

    template <class Pred>
    unsigned find_closest_if(point_type const& point, Pred pred) const
    {
        if (empty() || !coords) return NONE_ID;
        double distance;
        unsigned best = __tree_close(point, distance, pred);
        __search(0, 0, point.v, distance, best, pred);
        return best;
    }

    // Walks down to a leaf as an insertion of the point would, keeping the closest accepted node.
    template <class Pred>
    unsigned __tree_close(point_type const& point, double& distance, Pred pred) const
    {
        double const* X = coords->col(0);
        std::size_t ld = coords->ld();
        double best_squared = no_distance;
        unsigned best = NONE_ID;
        unsigned axis = 0;
        for (std::size_t at = 0; at != NONE_ID; axis = __next(axis)) {
            unsigned const* r = nodes[at];
            double const* c = X + r[0] * ld;
            if (pred(r[0])) {
                double q = __squared_distance<D>(c, point.v);
                if (q < best_squared) {
                    best_squared = q;
                    best = r[0];
                }
            }
            at = c[axis] > point[axis] ? r[1] : r[2];
        }
        distance = best == NONE_ID ? no_distance : std::sqrt(best_squared);
        return best;
    }

    // Visits a record, then its right subtree, then its left subtree, pruning by the current
    // distance. Written with an explicit stack of pending left subtrees so that long chains of
    // coincident nodes (which all go right) cannot exhaust the call stack.
    template <class Pred>
    void __search(unsigned long node, unsigned long axis, double const* point, double& distance, unsigned& best,
                  Pred pred) const
    {
        double const* X = coords->col(0);
        std::size_t ld = coords->ld();
        __pending_stack pending;
        for (;;) {
            while (node != NONE_ID) {
                unsigned const* r = nodes[node];
                __prefetch_coordinates(node + 1, X, ld);
                __prefetch_coordinates(node + 2, X, ld);
                double const* c = X + r[0] * ld;
                double s = c[axis];
                double d = distance;
                if (pred(r[0]) && __in_cube<D>(c, point, d)) {
                    double e = std::sqrt(__squared_distance<D>(c, point));
                    if (d > e) {
                        distance = e;
                        best = r[0];
                    }
                }
                if (r[1] != NONE_ID) pending.push({r[1], static_cast<unsigned>(axis), s});
                if (point[axis] + distance > s) {
                    node = r[2];
                    axis = __next(axis);
                } else {
                    node = NONE_ID;
                }
            }
            if (pending.empty()) return;
            __pending left = pending.pop();
            if (left.split > point[left.axis] - distance) {
                node = left.slot;
                axis = __next(left.axis);
            }
        }
    }

    // Appends the nodes in the box (min corner, then max corner, both inclusive) in the order
    // record, left subtree, right subtree.
    template <class Out>
    void __search1(double const* box, unsigned long node, unsigned long axis, Out out) const
    {
        double const* X = coords->col(0);
        std::size_t ld = coords->ld();
        double const* lo = box;
        double const* hi = box + D;
        for (;;) {
            unsigned const* r = nodes[node];
            double const* c = X + r[0] * ld;
            double s = c[axis];
            if (lo[axis] <= s && s <= hi[axis] && __in_box<D>(c, lo, hi)) *out++ = r[0];
            if (s >= lo[axis] && r[1] != NONE_ID) __search1(box, r[1], __next(axis), out);
            if (!(s <= hi[axis] && r[2] != NONE_ID)) return;
            node = r[2];
            axis = __next(axis);
        }
    }

    Matrix const* coords;
    dynamic_array<unsigned, 3> nodes;
    rand_gen gen;

private:
    // Once the slots follow the search order (see __relayout), the next slots are the likely next
    // visits: asking early for their coordinates hides part of the wait for the caller's matrix.
    void __prefetch_coordinates(unsigned long slot, double const* X, std::size_t ld) const noexcept
    {
        if (slot < size()) __builtin_prefetch(X + nodes[slot][0] * ld);
    }

    static unsigned __next(unsigned long axis) noexcept { return axis + 1 == D ? 0 : static_cast<unsigned>(axis + 1); }

    // The next free slot: a released one if any lies within the records, else a new one.
    std::size_t __take_slot()
    {
        std::size_t slot = nodes.items.cols();
        auto& stack = nodes.free_slots;
        if (stack.empty()) return slot;
        while (!stack.empty()) {
            slot = stack[stack.size() - 1];
            stack.resize(stack.size() - 1);
            if (slot < nodes.items.cols()) break;
        }
        auto& flags = nodes.free_flags;
        if (slot / 64 < flags.size()) flags[slot / 64] &= ~(1ul << (slot % 64));
        return slot;
    }

    struct __pending {
        unsigned slot;
        unsigned axis;
        double split;
    };

    // Stack of pending left subtrees: a local buffer that covers any balanced tree, spilling to the
    // heap only for degenerate ones.
    class __pending_stack {
    public:
        bool empty() const noexcept { return n_ == 0; }
        void push(__pending const& p)
        {
            if (n_ < local_size)
                local_[n_] = p;
            else
                spill_.push_back(p);
            ++n_;
        }
        __pending pop()
        {
            --n_;
            if (n_ < local_size) return local_[n_];
            __pending p = spill_.back();
            spill_.pop_back();
            return p;
        }

    private:
        static constexpr std::size_t local_size = 96;
        __pending local_[local_size];
        std::vector<__pending> spill_;
        std::size_t n_ = 0;
    };
};

// Inserts the nodes of list in the order of a shuffle seeded with 1, which keeps the tree shallow
// and its shape (hence the outcome of ties) fixed for a given list. scratch receives the shuffled
// list. Returns the number of insertions the tree accepted; none if scratch cannot be sized.
template <class Matrix, unsigned D>
std::size_t __insert_shuffled(bisection_tree<Matrix, D>& tree, dense1D<unsigned, 8> const& list,
                              dense1D<unsigned, 8>& scratch)
{
    if (list.empty() || !scratch.copy(list)) return 0;
    rand_gen gen(1);
    random_shuffle(scratch.begin(), scratch.end(), gen);
    std::size_t count = 0;
    for (unsigned node : scratch) count += tree.insert(node);
    return count;
}

extern template class bisection_tree<dense2D<double>, 2>;
extern template class bisection_tree<dense2D<double>, 3>;

}  // namespace qv7
