// Throws the boundaries of a mesh into a siever, keyed on a hash that ignores node order, and
// compares two of them by the descriptor's rule. One instantiation per element descriptor.
#pragma once

#include "connectivity/elfes.h"
#include "connectivity/siever.h"
#include "tessarium/dense2D.h"
#include "tessarium/fixed.h"

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
    bool resize(unsigned long elements)
    {
        return sieve_.resize(stride * elements, 2ul * stride * elements);
    }

    static unsigned long element_of(unsigned long id) noexcept { return id / stride; }

    // Inserts boundaries first_boundary and up of one element. A boundary that does not fit in
    // the table after an allocation failure is left out.
    void __bdry_insert_aux(unsigned long element, unsigned first_boundary)
    {
        unsigned const* row = connect_->col(element);
        unsigned count = Elfe::nbr_boundaries(row);
        for (unsigned b = first_boundary; b < count; ++b) {
            boundary_type nodes = __vacant_boundary();
            if (Elfe::copy_boundary_nodes(b, row, nodes.v) == nodes.v) continue;
            sieve_.insert(__hash(nodes), element * stride + b);
        }
    }

    // Makes boundary `id` the current boundary.
    void load_boundary(unsigned long id) noexcept
    {
        current_ = __vacant_boundary();
        Elfe::copy_boundary_nodes(id % stride, connect_->col(id / stride), current_.v);
    }

    // Boundary `id` against the current one: 1 the same in the same sense, -1 in the opposite
    // sense, 0 another boundary.
    int boundary_comp_second(unsigned long id) const noexcept
    {
        boundary_type other = __vacant_boundary();
        Elfe::copy_boundary_nodes(id % stride, connect_->col(id / stride), other.v);
        return Elfe::compare_boundaries(current_.v, other.v);
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
