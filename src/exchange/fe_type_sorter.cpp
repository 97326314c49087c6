#include "exchange/fe_type_sorter.h"

#include "tessarium/element_type.h"
#include "tessarium/sort_elfes.h"

#include <algorithm>

namespace qv7 {
namespace tessarium {
namespace {

// A sort key: the missing rows (R - valid nodes) above the initial column, so that ascending
// keys give descending node counts and, among equal counts, ascending initial columns.
constexpr unsigned key_shift = 32;

unsigned long sort_key(std::size_t missing, std::size_t column) noexcept
{
    return (static_cast<unsigned long>(missing) << key_shift) | column;
}

// Makes room for n entries and leaves the array empty; false when the room cannot be had.
bool reserve_empty(dense1D<unsigned, 8>& a, std::size_t n)
{
    a.clear();
    bool ok = a.resize(n);
    a.clear();
    return ok;
}

}  // namespace

unsigned fe_type_sorter::__valid_nodes(unsigned long column) const noexcept
{
    return __valid_nodes(connectivity.col(column));
}

unsigned fe_type_sorter::__valid_nodes(unsigned const* column) const noexcept
{
    unsigned v = 0;
    while (v < connectivity.rows() && column[v] != NONE_ID) ++v;
    return v;
}

void fe_type_sorter::__swap_cols(unsigned* a, unsigned* b, dense1D<unsigned, 8>& work, unsigned long n)
{
    if (!work.resize(n)) return;  // the caller reserved the room; never swap through a short buffer
    std::copy(a, a + n, work.data());
    std::copy(b, b + n, a);
    std::copy(work.data(), work.data() + n, b);
}

void fe_type_sorter::__swap_cols(unsigned long i, unsigned long j, dense1D<unsigned, 8>& work)
{
    __swap_cols(connectivity.col(i), connectivity.col(j), work, connectivity.rows());
    if (!neighbours.empty()) __swap_cols(neighbours.col(i), neighbours.col(j), work, neighbours.rows());
}

// On a failed allocation sizes, ends and new_indices stay empty and the matrices untouched.
void fe_type_sorter::__sort_elements(dense1D<unsigned, 8>& new_indices, dense1D<unsigned, 8>& old_indices,
                                     dense1D<unsigned, 8>& sizes, dense1D<unsigned, 8>& ends)
{
    std::size_t R = connectivity.rows(), C = connectivity.cols();
    dense1D<unsigned, 8> work;
    dense1D<unsigned long, 8> keys;
    bool ok = reserve_empty(work, std::max(R, neighbours.rows()));
    // There are at most R + 1 distinct node counts, so the groups never grow these two again.
    ok = reserve_empty(sizes, R + 1) && ok;
    ok = reserve_empty(ends, R + 1) && ok;
    new_indices.clear();
    old_indices.clear();
    ok = ok && new_indices.resize(C) && old_indices.resize(C) && keys.resize(C);
    if (!ok) {
        sizes.clear();
        ends.clear();
        new_indices.clear();
        return;
    }
    for (std::size_t j = 0; j < C; ++j) new_indices[j] = old_indices[j] = static_cast<unsigned>(j);

    std::size_t n = 0;
    for (std::size_t j = 0; j < C; ++j) {
        unsigned v = __valid_nodes(j);
        if (v != 0) keys[n++] = sort_key(R - v, j);
    }
    keys.resize(n);
    std::sort(keys.begin(), keys.end());

    auto count_of = [R](unsigned long key) { return static_cast<unsigned>(R - (key >> key_shift)); };
    unsigned current = n == 0 ? 0 : count_of(keys[0]);
    for (std::size_t i = 0; i < n; ++i) {
        unsigned v = count_of(keys[i]);
        unsigned j = static_cast<unsigned>(keys[i] & 0xFFFFFFFFul);
        unsigned p = new_indices[j];
        if (v != current) {
            sizes.push_back(current);
            ends.push_back(static_cast<unsigned>(i));
            current = v;
        }
        if (p == i) continue;
        __swap_cols(i, p, work);
        new_indices[old_indices[i]] = p;
        new_indices[old_indices[p]] = static_cast<unsigned>(i);
        std::swap(old_indices[i], old_indices[p]);
    }
    sizes.push_back(current);
    ends.push_back(static_cast<unsigned>(n));

    connectivity.resize(R, n);
    if (!neighbours.empty()) neighbours.resize(neighbours.rows(), n);
    for (unsigned& index : new_indices)
        if (index >= n) index = NONE_ID;
}

void fe_type_sorter::run(dense1D<unsigned, 8>& sizes, dense1D<unsigned, 8>& ends, dense1D<unsigned, 8>& new_indices)
{
    dense1D<unsigned, 8> old_indices;
    __sort_elements(new_indices, old_indices, sizes, ends);
    if (sizes.empty() || neighbours.empty()) return;
    std::size_t C = new_indices.size();
    for (std::size_t j = 0; j < neighbours.cols(); ++j) {
        unsigned* column = neighbours.col(j);
        for (std::size_t r = 0; r < neighbours.rows(); ++r) {
            unsigned& e = column[r];
            // Entries beyond the initial column count name no element at all.
            if (e != NONE_ID) e = e < C ? new_indices[e] : NONE_ID;
        }
    }
}

int sort_elfes(dense2D<unsigned>& connectM, dense1D<unsigned, 8>& sizes, dense1D<unsigned, 8>& ends,
               dense1D<unsigned, 8>& new_indices)
{
    dense2D<unsigned> no_neighbours;
    return sort_elfes(connectM, no_neighbours, sizes, ends, new_indices);
}

int sort_elfes(dense2D<unsigned>& connectM, dense2D<unsigned>& neighbours, dense1D<unsigned, 8>& sizes,
               dense1D<unsigned, 8>& ends, dense1D<unsigned, 8>& new_indices)
{
    if (!neighbours.empty() && neighbours.cols() != connectM.cols()) return -1;
    fe_type_sorter(connectM, neighbours).run(sizes, ends, new_indices);
    return sizes.empty() ? -199 : 0;
}

}  // namespace tessarium
}  // namespace qv7
