#include "exchange/stl_soup.h"

#include "connectivity/elfes.h"
#include "tessarium/element_type.h"

#include <algorithm>

namespace qv7 {
namespace tessarium {
namespace {

// Node numbers must stay below NONE_ID.
constexpr std::size_t max_points = NONE_ID;

}  // namespace

bool __STL_soup::grow(std::size_t columns)
{
    if (columns > max_points) return false;
    return pos_.resize(3, columns);
}

bool __STL_soup::reserve(std::size_t facets)
{
    std::size_t need = used_ + 3 * std::min<std::size_t>(facets, max_points / 3);
    return need <= pos_.cols() || grow(need);
}

bool __STL_soup::add_point(double const* xyz)
{
    if (used_ == pos_.cols()) {
        std::size_t columns = std::max<std::size_t>(2 * used_, 96);
        if (!grow(std::min(columns, max_points)) || used_ == pos_.cols()) return false;
    }
    double* point = pos_.col(used_++);
    point[0] = xyz[0];
    point[1] = xyz[1];
    point[2] = xyz[2];
    return true;
}

void __STL_soup::end_facet()
{
    unsigned nodes[3] = {unsigned(used_ - 3), unsigned(used_ - 2), unsigned(used_ - 1)};
    double h = elfes::faceT3::sqr_height(pos_, nodes, 0);
    h = std::min(h, elfes::faceT3::sqr_height(pos_, nodes, 1));
    h = std::min(h, elfes::faceT3::sqr_height(pos_, nodes, 2));
    // Degenerate facets do not count.
    if (h > 0.0) min_sqr_height_ = std::min(min_sqr_height_, h);
}

double __STL_soup::close()
{
    pos_.resize(3, used_);
    return min_sqr_height_;
}

}  // namespace tessarium
}  // namespace qv7
