// Fuzzes merge on points from the input. Layout: one byte of flags (bit 0: three coordinates, else
// two; bits 1-2: the form), then tol, a unit and a shift as raw doubles, then the coordinates as
// 16-bit integers v, each standing for v * unit, plus the shift for nodes of odd number (two
// clusters); v = -32768 takes the next 8 bytes as a raw double instead (an outlier, an infinity, a
// NaN). Up to 300 nodes the map is checked against a plain scan of all pairs; any size must stay
// about n log n, which a 2-second limit per input enforces.
#include "reader_checks.h"
#include "support/plain_merge.h"
#include "tessarium/element_type.h"
#include "tessarium/repair.h"

#include <cstring>
#include <vector>

namespace {

using IDs = qv7::dense1D<unsigned, 8>;

struct input {
    std::uint8_t const* at;
    std::size_t left;

    template <class T>
    bool take(T& value)
    {
        if (left < sizeof value) return false;
        std::memcpy(&value, at, sizeof value);
        at += sizeof value, left -= sizeof value;
        return true;
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    input in{data, size};
    std::uint8_t flags = 0;
    double tol = 0, unit = 0, shift = 0;
    if (!in.take(flags) || !in.take(tol) || !in.take(unit) || !in.take(shift)) return 0;
    unsigned rows = flags & 1 ? 3 : 2, form = (flags >> 1) & 3;
    std::vector<double> coords;
    for (std::int16_t v; in.take(v);) {
        double x = v * unit;
        if (v == -32768 && !in.take(x)) break;
        coords.push_back(x);
    }
    std::size_t n = coords.size() / rows;
    qv7::dense2D<double> pos;
    if (!pos.resize(rows, n)) return 0;
    for (std::size_t j = 0; j < n; ++j)
        for (unsigned k = 0; k < rows; ++k) pos(k, j) = coords[rows * j + k] + (j % 2 ? shift : 0.0);

    // Form 0: coordinates; 1: one list, last node first; 2 and 3: triangles of consecutive nodes,
    // merged in mode 1 or 2.
    IDs merged;
    std::vector<unsigned> list(n);
    for (std::size_t j = 0; j < n; ++j) list[j] = static_cast<unsigned>(form == 1 ? n - 1 - j : j);
    qv7::dense2D<double> moved;
    int result;
    if (form < 2) {
        IDs ids;
        for (unsigned v : list) require(ids.push_back(v));
        require(moved.copy(pos));
        result = form == 0 ? qv7::tessarium::merge(moved, merged, tol) : qv7::tessarium::merge(pos, ids, merged, tol);
    } else {
        qv7::dense2D<unsigned> T3;
        require(T3.resize(3, n / 3));
        for (std::size_t e = 0; e < 3 * (n / 3); ++e) T3.data()[e] = static_cast<unsigned>(e);
        result = qv7::tessarium::merge(pos, T3, merged, tol, form - 1);
        for (std::size_t e = 0; e < 3 * (n / 3) && result >= 0; ++e) require(T3.data()[e] == merged[e]);
    }

    if (n == 0) return require(result == 0), 0;
    if (0.0 > tol) return require(result == (form == 0 ? -3 : form == 1 ? -4 : -5)), 0;
    if (form >= 2 && n < 3) return require(result == 0), 0;  // no triangle: nothing to merge
    require(result >= 0 && std::size_t(result) <= n && merged.size() == n);
    for (unsigned m : merged) require(m < n);
    if (form >= 2 || n > 300) return 0;
    int count = 0;
    std::vector<unsigned> expected = plain_merge(pos, list, list, tol, count);
    require(result == count);
    for (std::size_t j = 0; j < n; ++j) {
        require(merged[j] == expected[j]);
        if (form == 0)
            for (unsigned k = 0; k < rows; ++k) {
                double want = pos(k, expected[j]), got = moved(k, j);
                require(got == want || (got != got && want != want));
            }
    }
    return 0;
}
