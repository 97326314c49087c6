// Removal, in place, of the elements of one sorted range that another sorted range holds.
#pragma once

#include <algorithm>

namespace qv7 {

// Both ranges ascending. Copies down each element of the first range that the second does not
// hold, one for one among equal elements, keeping their order; returns the new end.
template <class It1, class It2>
It1 set_subtract(It1 first1, It1 last1, It2 first2, It2 last2)
{
    if (first1 == last1 || first2 == last2) return last1;
    It1 out = first1;
    while (first1 != last1 && first2 != last2) {
        if (*first1 < *first2) {
            *out++ = *first1++;
        } else if (*first2 < *first1) {
            ++first2;
        } else {
            ++first1;
            ++first2;
        }
    }
    return std::move(first1, last1, out);
}

}  // namespace qv7
