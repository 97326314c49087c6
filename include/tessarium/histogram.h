// Counting histogram of measured values, filled one value at a time.
#pragma once

#include "export.h"
#include <cstddef>
#include <vector>

TESSARIUM_EXPORT_BEGIN
namespace qv7 {
namespace misc {

class histogram {
public:
    histogram() = default;
    // Bins [edges[i], edges[i+1]); values below edges.front() are underflow, values at or
    // above edges.back() overflow. The edges must be increasing.
    explicit histogram(std::vector<double> edges);

    void process(double value);

    std::size_t count() const noexcept { return count_; }  // every processed value, NaN included
    std::size_t nan_count() const noexcept { return nan_count_; }
    double min() const noexcept { return min_; }  // +inf while no number was processed
    double max() const noexcept { return max_; }  // -inf while no number was processed
    double sum() const noexcept { return sum_; }  // of the values that are not NaN
    std::size_t bin_count() const noexcept { return bins_.size(); }
    std::size_t bin(std::size_t i) const noexcept { return bins_[i]; }
    std::vector<double> const& edges() const noexcept { return edges_; }
    std::size_t underflow() const noexcept { return underflow_; }
    std::size_t overflow() const noexcept { return overflow_; }

private:
    std::vector<double> edges_;
    std::vector<std::size_t> bins_;
    std::size_t count_ = 0, nan_count_ = 0, underflow_ = 0, overflow_ = 0;
    double min_ = __builtin_huge_val(), max_ = -__builtin_huge_val(), sum_ = 0.0;
};

}  // namespace misc
}  // namespace qv7
TESSARIUM_EXPORT_END
