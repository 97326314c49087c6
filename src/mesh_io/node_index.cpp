#include "mesh_io/node_index.h"

#include "tessarium/element_type.h"

#include <algorithm>

namespace qv7 {
namespace tessarium {

std::size_t __node_index::build(std::vector<std::int64_t> const& IDs, std::vector<char>& keep)
{
    std::size_t n = IDs.size(), kept = 0;
    largest_ = 0;
    for (std::int64_t ID : IDs) largest_ = std::max(largest_, ID);
    keep.assign(n, 0);
    if (largest_ >= 0 && static_cast<std::uint64_t>(largest_) <= 4 * n + 1024) {
        table_.assign(static_cast<std::size_t>(largest_) + 1, NONE_ID);
        for (std::size_t j = 0; j < n; ++j)
            if (IDs[j] >= 0 && table_[IDs[j]] == NONE_ID) table_[IDs[j]] = static_cast<unsigned>(kept++), keep[j] = 1;
        return kept;
    }
    sorted_.clear();
    sorted_.reserve(n);
    for (std::size_t j = 0; j < n; ++j) sorted_.emplace_back(IDs[j], static_cast<unsigned>(j));
    std::stable_sort(sorted_.begin(), sorted_.end(), [](auto const& a, auto const& b) { return a.first < b.first; });
    std::size_t unique = 0;
    for (std::size_t k = 0; k < n; ++k)
        if (k == 0 || sorted_[k].first != sorted_[k - 1].first)
            keep[sorted_[k].second] = 1, sorted_[unique++] = sorted_[k];
    sorted_.resize(unique);
    std::vector<unsigned> column(n, NONE_ID);
    for (std::size_t j = 0; j < n; ++j)
        if (keep[j]) column[j] = static_cast<unsigned>(kept++);
    for (auto& s : sorted_) s.second = column[s.second];
    return kept;
}

unsigned __node_index::operator()(std::int64_t ID) const noexcept
{
    if (!table_.empty()) return ID >= 0 && static_cast<std::size_t>(ID) < table_.size() ? table_[ID] : NONE_ID;
    auto it = std::lower_bound(sorted_.begin(), sorted_.end(), std::make_pair(ID, 0u));
    return it != sorted_.end() && it->first == ID ? it->second : NONE_ID;
}

}  // namespace tessarium
}  // namespace qv7
