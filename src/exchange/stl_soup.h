// What the two STL forms share: the triangle soup they build, three columns of pos per facet,
// and the smallest positive squared height seen.
#pragma once

#include "tessarium/dense2D.h"

#include <cfloat>
#include <cstdio>

namespace qv7 {
namespace tessarium {

class __STL_soup {
public:
    explicit __STL_soup(dense2D<double>& pos) : pos_(pos) {}

    // Room for this many more facets at once; false when the storage cannot be had.
    bool reserve(std::size_t facets);
    // Appends one vertex of the current facet; false when pos cannot grow.
    bool add_point(double const* xyz);
    // Ends the facet of the last three points: takes its smallest squared height into account.
    void end_facet();
    // Shrinks pos to the points appended, and returns the smallest positive squared height.
    double close();

private:
    bool grow(std::size_t columns);

    dense2D<double>& pos_;
    std::size_t used_ = 0;
    double min_sqr_height_ = DBL_MAX;
};

// The two forms, reading an open file into the soup. 0 or a negative code.
int __STL_read_text(std::FILE* file, __STL_soup& soup);
int __STL_read_binary(std::FILE* file, __STL_soup& soup);

// Welds the soup: exact duplicates first, then nodes within tolerance, then drops the collapsed
// triangles and the orphaned nodes.
int __STL_input_merge(double tolerance, dense2D<double>& pos, dense2D<unsigned>& connectT3);

}  // namespace tessarium
}  // namespace qv7
