#include "tessarium/histogram.h"

#include <algorithm>
#include <cmath>

namespace qv7 {
namespace misc {

histogram::histogram(std::vector<double> edges) : edges_(std::move(edges))
{
    if (edges_.size() > 1) bins_.assign(edges_.size() - 1, 0);
}

void histogram::process(double value)
{
    ++count_;
    if (std::isnan(value)) {
        ++nan_count_;
        return;
    }
    min_ = std::min(min_, value);
    max_ = std::max(max_, value);
    sum_ += value;
    if (edges_.empty()) return;
    if (value < edges_.front()) {
        ++underflow_;
    } else if (value >= edges_.back()) {
        ++overflow_;
    } else {
        auto upper = std::upper_bound(edges_.begin(), edges_.end(), value);
        ++bins_[static_cast<std::size_t>(upper - edges_.begin()) - 1];
    }
}

}  // namespace misc
}  // namespace qv7
