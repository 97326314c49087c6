// Node IDs of a file to the columns of the mesh: a table indexed by ID when the IDs are dense
// enough, else a sorted list, so that IDs near 10^10 cost no more than small ones.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

namespace qv7 {
namespace tessarium {

class __node_index {
public:
    // Numbers the IDs in file order, a repeated ID keeping its first place; keep[j] tells
    // whether ID j has a column. The number of columns.
    std::size_t build(std::vector<std::int64_t> const& IDs, std::vector<char>& keep);
    // The column of an ID; NONE_ID for an ID never given.
    unsigned operator()(std::int64_t ID) const noexcept;
    std::int64_t largest() const noexcept { return largest_; }

private:
    std::vector<unsigned> table_;
    std::vector<std::pair<std::int64_t, unsigned>> sorted_;
    std::int64_t largest_ = 0;
};

}  // namespace tessarium
}  // namespace qv7
