#include "core/hash_set.h"
#include "nodes/index_internal.h"
#include "tessarium/index_utilities.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace qv7 {
namespace tessarium {
namespace {

using IDs = dense1D<unsigned, 8>;

// Sets out to n entries of NONE_ID; false when memory runs out.
bool none_filled(IDs& out, std::size_t n)
{
    out.clear();
    bool sized = out.resize(n);
    std::fill(out.begin(), out.end(), NONE_ID);
    return sized;
}

// Order-free key of a column: a sum of FNV-style terms, one per entry.
std::uint64_t column_key(unsigned const* c, std::size_t rows) noexcept
{
    std::uint64_t key = 0;
    for (std::size_t i = 0; i < rows; ++i) key += std::uint64_t(c[i] ^ 0x811c9dc5u) * 16777619u;
    return key;
}

// Turns the loop so that its first largest entry comes first.
void rotate_to_largest(unsigned* c, std::size_t rows)
{
    std::rotate(c, std::max_element(c, c + rows), c + rows);
}

// Columns of a grouped by key. Chains run from the largest column number to the smallest.
class column_index {
public:
    explicit column_index(dense2D<unsigned> const& a) : heads_(193), next_(a.cols(), NONE_ID)
    {
        for (std::size_t k = 0; k < a.cols(); ++k) {
            std::uint64_t key = column_key(a.col(k), a.rows());
            if (unsigned* head = heads_.find(key)) next_[k] = *head;
            heads_.insert_or_assign(key, static_cast<unsigned>(k));
        }
    }
    unsigned first(std::uint64_t key) const noexcept
    {
        unsigned const* head = heads_.find(key);
        return head ? *head : NONE_ID;
    }
    unsigned next(unsigned k) const noexcept { return next_[k]; }

private:
    hash_map<std::uint64_t, unsigned> heads_;
    std::vector<unsigned> next_;
};

}  // namespace

int get_IDs(IDs const& a, IDs const& b, IDs& out_b, IDs& out_a)
{
    bool sized = none_filled(out_b, b.size());
    sized = none_filled(out_a, a.size()) && sized;
    if (a.empty() || b.empty() || !sized) return 0;
    hash_map<unsigned, unsigned> first_position(193);
    for (std::size_t k = a.size(); k-- > 0;)
        if (a[k] != NONE_ID) first_position.insert_or_assign(a[k], static_cast<unsigned>(k));
    for (std::size_t j = b.size(); j-- > 0;) {
        if (unsigned const* k = first_position.find(b[j])) {
            out_b[j] = *k;
            out_a[*k] = static_cast<unsigned>(j);
        }
    }
    return 0;
}

int get_IDs(dense2D<unsigned> const& a, dense2D<unsigned> const& b, IDs& out_b, IDs& out_a, bool ordered)
{
    out_b.clear();
    out_a.clear();
    if (a.rows() != b.rows()) return -2;
    bool sized = none_filled(out_b, b.cols());
    sized = none_filled(out_a, a.cols()) && sized;
    if (a.empty() || b.empty() || !sized) return 0;

    std::size_t rows = a.rows();
    column_index by_key(a);
    std::vector<unsigned> B(rows), A(rows);
    bool as_loop = !ordered && rows >= 2;
    for (std::size_t j = b.cols(); j-- > 0;) {
        std::copy(b.col(j), b.col(j) + rows, B.begin());
        if (as_loop) rotate_to_largest(B.data(), rows);
        unsigned best = static_cast<unsigned>(a.cols());
        for (unsigned k = by_key.first(column_key(B.data(), rows)); k != NONE_ID; k = by_key.next(k)) {
            std::copy(a.col(k), a.col(k) + rows, A.begin());
            if (as_loop) rotate_to_largest(A.data(), rows);
            bool match = k < best && A == B;
            if (!match && as_loop) {
                std::reverse(A.begin() + 1, A.end());
                match = k < best && A == B;
            }
            if (match) {
                out_b[j] = k;
                out_a[k] = static_cast<unsigned>(j);
                best = k;
            }
        }
    }
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
