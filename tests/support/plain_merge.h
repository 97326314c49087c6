// The survivor map of merge's list form written out plainly, a reference for the tests and the
// fuzzer: distinct lists in first-seen order, a scan of the second list in order for the first node
// other than i inside the box and within tol, then the chain walk while the rank falls.
#pragma once

#include "tessarium/dense2D.h"
#include "tessarium/element_type.h"

#include <algorithm>
#include <numeric>
#include <vector>

inline std::vector<unsigned> plain_merge(qv7::dense2D<double> const& pos, std::vector<unsigned> const& ids1,
                                         std::vector<unsigned> const& ids2, double tol, int& count)
{
    auto distinct = [](std::vector<unsigned> const& ids) {
        std::vector<unsigned> out;
        for (unsigned v : ids)
            if (v != qv7::NONE_ID && std::find(out.begin(), out.end(), v) == out.end()) out.push_back(v);
        return out;
    };
    std::vector<unsigned> list1 = distinct(ids1), list2 = distinct(ids2);
    std::vector<unsigned> merged(pos.cols()), rank(pos.cols(), qv7::NONE_ID);
    std::iota(merged.begin(), merged.end(), 0u);
    for (unsigned k = 0; k < list2.size(); ++k) rank[list2[k]] = k;
    count = 0;
    for (unsigned i : list1) {
        for (unsigned c : list2) {
            double q = 0;
            bool inside = c != i;
            for (unsigned k = 0; k < pos.rows(); ++k) {
                double p = pos(k, i), x = pos(k, c);
                inside = inside && p - tol <= x && x <= p + tol;
                q += (x - p) * (x - p);
            }
            if (inside && q <= tol * tol) {
                merged[i] = c;
                ++count;
                break;
            }
        }
    }
    if (count < 2) return merged;
    for (unsigned i : list1) {
        unsigned w = i, cur = i, best = qv7::NONE_ID;
        for (;;) {
            w = cur;
            cur = merged[w];
            if (cur == w || rank[cur] >= best) break;
            best = rank[cur];
        }
        merged[i] = w;
    }
    count = 0;
    for (unsigned i : list1) count += merged[i] != i;
    return merged;
}
