// Throws the boundaries of a mesh into a siever, keyed on a hash that ignores node order, and
// compares two of them by the descriptor's rule. One instantiation per element descriptor.
#pragma once

#include "connectivity/elfes.h"
#include "connectivity/siever.h"
#include "tessarium/dense2D.h"
#include "tessarium/fixed.h"

#include <cstdint>

namespace qv7 {

template <class Elfe, class Connect>
class boundary_finder;

template <class Elfe>
class boundary_finder<Elfe, dense2D<unsigned>> {
public:
    using elfe_type = Elfe;
    static constexpr unsigned stride = Elfe::stride;
    static constexpr unsigned width = Elfe::boundary_width;
    using boundary_type = vector_fixed<unsigned, width>;

    boundary_finder()
    {
        sieve_.resize(16, 32);
        clear_boundary();
    }

    void set_connectivity(dense2D<unsigned> const* connect) noexcept { connect_ = connect; }
    void clear_boundary() noexcept { current_ = __vacant_boundary(); }
    boundary_type const& boundary() const noexcept { return current_; }
    siever& sieve() noexcept { return sieve_; }

    // Room for every boundary of `elements` elements, with twice as many buckets.
    bool resize(unsigned long elements) { return sieve_.resize(stride * elements, 2ul * stride * elements); }

    static unsigned long element_of(unsigned long id) noexcept { return id / stride; }

    // Inserts boundaries first_boundary and up of one element. A boundary that does not fit in
    // the table after an allocation failure is left out.
    void __bdry_insert_aux(unsigned long element, unsigned first_boundary)
    {
        __for_each_boundary(element, first_boundary, [&](unsigned b, boundary_type const& nodes) {
            sieve_.insert(__hash(nodes), element * stride + b);
        });
    }

    // Inserts the boundaries of elements first to last - 1 in ascending order, as
    // __bdry_insert_aux(e, 0) does for each e. Insertions run `ahead` boundaries behind the
    // hashing, so that the table lines they need are asked for early: the head when a boundary is
    // hashed, the pair the head leads to halfway.
    void __bdry_insert_elements(unsigned long first, unsigned long last)
    {
        constexpr unsigned ahead = 64, ring = 2 * ahead;
        unsigned long bucket[ring], id[ring];
        unsigned long hashed = 0, inserted = 0;
        for (unsigned long e = first; e < last; ++e)
            __for_each_boundary(e, 0, [&](unsigned b, boundary_type const& nodes) {
                unsigned long k = hashed++ % ring;
                bucket[k] = __hash(nodes);
                id[k] = e * stride + b;
                sieve_.prefetch_head(bucket[k]);
                if (hashed > ahead / 2) sieve_.prefetch_tail(bucket[(hashed - ahead / 2 - 1) % ring]);
                if (hashed > ahead) {
                    k = inserted++ % ring;
                    sieve_.insert(bucket[k], id[k]);
                }
            });
        for (; inserted < hashed; ++inserted) sieve_.insert(bucket[inserted % ring], id[inserted % ring]);
    }

    // Makes boundary `id` the current boundary.
    void load_boundary(unsigned long id) noexcept { current_ = nodes_of(id); }

    // Boundary `id` against the current one: 1 the same in the same sense, -1 in the opposite
    // sense, 0 another boundary.
    int boundary_comp_second(unsigned long id) const noexcept { return compare(current_, nodes_of(id)); }

    // The nodes of boundary `id`, spare entries NONE_ID.
    boundary_type nodes_of(unsigned long id) const noexcept
    {
        boundary_type nodes = __vacant_boundary();
        Elfe::copy_boundary_nodes(id % stride, connect_->col(id / stride), nodes.v);
        return nodes;
    }
    static int compare(boundary_type const& a, boundary_type const& b) noexcept
    {
        return Elfe::compare_boundaries(a.v, b.v);
    }
    // A number that depends only on the multiset of the nodes. Every comparison that does not give
    // 0 finds the same nodes on both sides, so boundaries with different keys never match.
    static unsigned long key(boundary_type const& nodes) noexcept
    {
        unsigned long sum = 0;
        for (unsigned k = 0; k < width; ++k) sum += static_cast<unsigned long>(nodes[k]) * nodes[k];
        return sum;
    }
    // Asks for the column of boundary `id`, which may straddle two cache lines.
    void prefetch_nodes(unsigned long id) const noexcept
    {
        unsigned const* row = connect_->col(id / stride);
        unsigned const* end = row + Elfe::nbr_rows - 1;
        __prefetch(row);
        if ((reinterpret_cast<std::uintptr_t>(row) ^ reinterpret_cast<std::uintptr_t>(end)) >= 64) __prefetch(end);
    }

    // FNV constants; the terms are added, so the order of the nodes does not count. A triangle of
    // a solid with mixed faces has NONE_ID as fourth term, like a quadrangle's fourth node.
    unsigned long __hash(boundary_type const& nodes) const noexcept
    {
        constexpr unsigned long offset = 0x811C9DC5ul, prime = 16777619ul;
        unsigned long sum = 0;
        for (unsigned k = 0; k < width; ++k) sum += static_cast<unsigned long>(nodes[k]) ^ offset;
        return (sum * prime) & sieve_.mask();
    }

private:
    // Calls f(b, nodes) for boundaries first_boundary and up of one element, skipping those of
    // which the element's kind has no nodes.
    template <class F>
    void __for_each_boundary(unsigned long element, unsigned first_boundary, F&& f) const
    {
        unsigned const* row = connect_->col(element);
        unsigned count = Elfe::nbr_boundaries(row);
        for (unsigned b = first_boundary; b < count; ++b) {
            boundary_type nodes = __vacant_boundary();
            if (Elfe::copy_boundary_nodes(b, row, nodes.v) != nodes.v) f(b, nodes);
        }
    }

    static boundary_type __vacant_boundary() noexcept
    {
        boundary_type nodes;
        for (unsigned k = 0; k < width; ++k) nodes[k] = NONE_ID;
        return nodes;
    }

    dense2D<unsigned> const* connect_ = nullptr;
    siever sieve_;
    boundary_type current_;
};

}  // namespace qv7
