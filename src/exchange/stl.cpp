// STL reader: the text form first, the binary form when the text form finds the file malformed,
// then the soup is welded into a mesh.
#include "exchange/stl_soup.h"
#include "tessarium/stl.h"

#include <cfloat>
#include <cmath>

namespace qv7 {
namespace tessarium {
namespace {

// Column j of connectT3 holds the soup's points 3j, 3j+1, 3j+2; then the soup is welded with a
// tolerance of a twentieth of its smallest positive height.
int finish(double min_sqr_height, dense2D<double>& pos, dense2D<unsigned>& connectT3)
{
    std::size_t facets = pos.cols() / 3;
    if (!connectT3.resize(3, facets)) return -199;
    unsigned* node = connectT3.data();
    for (std::size_t k = 0; k < 3 * facets; ++k) node[k] = static_cast<unsigned>(k);
    // Without a facet of positive height, each facet keeps its own nodes.
    if (min_sqr_height < DBL_MAX && min_sqr_height > 0.0)
        return __STL_input_merge(0.05 * std::sqrt(min_sqr_height), pos, connectT3);
    return 0;
}

using form = int (*)(std::FILE*, __STL_soup&);

// Reads one form from an open file; on failure both arrays are left empty.
int read_form(form read, std::FILE* file, dense2D<double>& pos, dense2D<unsigned>& connectT3)
{
    __STL_soup soup(pos);
    int r = read(file, soup);
    double min_sqr_height = soup.close();
    std::fclose(file);
    if (r == 0) r = finish(min_sqr_height, pos, connectT3);
    if (r < 0) {
        pos.clear();
        connectT3.clear();
    }
    return r;
}

}  // namespace

int STL_input(char const* file_name, dense2D<double>& pos, dense2D<unsigned>& connectT3)
{
    pos.clear();
    connectT3.clear();
    int r = -1;
    if (std::FILE* text = std::fopen(file_name, "rt")) r = read_form(__STL_read_text, text, pos, connectT3);
    // Only a malformed text file is worth a try as binary.
    if (r >= 0 || r <= -199) return r;
    std::FILE* binary = std::fopen(file_name, "rb");
    if (!binary) return r;
    return read_form(__STL_read_binary, binary, pos, connectT3);
}

}  // namespace tessarium
}  // namespace qv7
