// The binary form of STL: an 80-byte header, a 32-bit facet count, 50 bytes per facet.
#include "exchange/stl_soup.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <sys/types.h>

namespace qv7 {
namespace tessarium {
namespace {

constexpr std::size_t header_bytes = 80, facet_bytes = 50, vertex_bytes = 12;

// Facets that the rest of the file can hold; 0 when its size cannot be told.
std::size_t facets_left(std::FILE* file)
{
    off_t here = ftello(file);
    if (here < 0 || fseeko(file, 0, SEEK_END) != 0) return 0;
    off_t end = ftello(file);
    if (fseeko(file, here, SEEK_SET) != 0 || end < here) return 0;
    return static_cast<std::size_t>(end - here) / facet_bytes;
}

double read_float(unsigned char const* p)
{
    float f;
    std::memcpy(&f, p, sizeof f);
    return f;
}

// One facet record of which `bytes` could be read: the normal is dropped, each whole vertex is
// appended, and the attribute word is ignored. -3 when the record was cut short.
int read_facet(unsigned char const* record, std::size_t bytes, __STL_soup& soup)
{
    for (std::size_t v = 1; v <= 3; ++v) {
        if (bytes < (v + 1) * vertex_bytes) return -3;
        unsigned char const* p = record + v * vertex_bytes;
        double xyz[3] = {read_float(p), read_float(p + 4), read_float(p + 8)};
        if (!soup.add_point(xyz)) return -199;
    }
    soup.end_facet();
    return bytes < facet_bytes ? -3 : 0;
}

}  // namespace

int __STL_read_binary(std::FILE* file, __STL_soup& soup)
{
    unsigned char buffer[512 * facet_bytes];
    if (std::fread(buffer, 1, header_bytes, file) != header_bytes) return -2;
    if (std::fread(buffer, 1, 4, file) != 4) return -3;
    std::int32_t count;
    std::memcpy(&count, buffer, 4);
    if (count < 1) return 0;
    std::size_t facets = static_cast<std::size_t>(count);
    // Never trust the count beyond what the file can hold.
    if (!soup.reserve(std::min(facets, facets_left(file)))) return -199;
    constexpr std::size_t chunk = sizeof buffer / facet_bytes;
    for (std::size_t done = 0; done < facets;) {
        std::size_t want = std::min(chunk, facets - done);
        std::size_t got = std::fread(buffer, 1, want * facet_bytes, file);
        std::size_t whole = got / facet_bytes;
        for (std::size_t k = 0; k < whole; ++k)
            if (int r = read_facet(buffer + k * facet_bytes, facet_bytes, soup)) return r;
        // A record cut short: what it holds is appended before the failure, as with any record.
        if (whole < want) return read_facet(buffer + whole * facet_bytes, got % facet_bytes, soup);
        done += whole;
    }
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
