// A plain record of three fields and the order that sorts close-node pairs.
#pragma once

namespace qv7 {

template <class T1, class T2, class T3>
struct triad {
    T1 first;
    T2 second;
    T3 third;
};

// Orders by the first field, then by the second; the third is not compared.
template <class T>
struct lesser_pair {
    bool operator()(T const& a, T const& b) const noexcept
    {
        return a.first < b.first || (a.first == b.first && a.second < b.second);
    }
};

}  // namespace qv7
