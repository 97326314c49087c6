// STL through the format function, after a look at which of the two forms the file can be.
#include "mesh_io/file_text.h"
#include "mesh_io/mesh_io.h"
#include "tessarium/stl.h"

#include <cctype>
#include <cstdint>
#include <cstring>

#include <sys/stat.h>

namespace qv7 {
namespace tessarium {
namespace {

// "solid" as the first word, in any case.
bool starts_as_text(std::string const& head)
{
    std::size_t i = 0;
    while (i < head.size() && std::isspace(static_cast<unsigned char>(head[i]))) ++i;
    if (head.size() - i < 5) return false;
    for (std::size_t k = 0; k < 5; ++k)
        if (std::tolower(static_cast<unsigned char>(head[i + k])) != "solid"[k]) return false;
    return true;
}

}  // namespace

int __read_STL(std::string const& path, mesh& m, io_report& r)
{
    std::string head;
    {
        std::FILE* in = std::fopen(path.c_str(), "rb");
        char bytes[84];
        std::size_t n = in ? std::fread(bytes, 1, sizeof bytes, in) : 0;
        if (in) std::fclose(in);
        head.assign(bytes, n);
    }
    struct stat status;
    stat(path.c_str(), &status);
    std::uint64_t size = static_cast<std::uint64_t>(status.st_size), facets = 0;
    if (head.size() == 84) {
        std::uint32_t count;
        std::memcpy(&count, head.data() + 80, 4);
        facets = count;
    }
    bool binary = head.size() == 84 && size == 84 + 50 * facets;
    bool text = starts_as_text(head);
    if (!binary && !text && head.size() == 84 && size < 84 + 50 * facets && size >= 84 + 50 * (facets / 2))
        return __fail(r, io_malformed, path,
                      "binary STL cut short: its " + std::to_string(facets) + " facets need " +
                          std::to_string(84 + 50 * facets) + " bytes, the file has " + std::to_string(size));
    if (!binary && !text)
        return __fail(r, io_malformed, path,
                      "not STL: no \"solid\" at the start of a text file, and as a binary file its " +
                          std::to_string(facets) + " facets would need " + std::to_string(84 + 50 * facets) +
                          " bytes, not " + std::to_string(size));
    dense2D<unsigned> T3;
    int code = STL_input(path.c_str(), m.pos, T3);
    if (code == -199) return __fail(r, io_no_memory, path, "not enough memory for the triangles");
    if (code < 0)
        return __fail(r, io_malformed, path,
                      binary ? "binary facets cut short"
                             : "a facet is malformed, or the file ends before \"endsolid\" (cut short?)");
    if (T3.cols() != 0) {
        element_block b;
        b.type = ET_FACE_T3;
        b.connect = T3;
        m.blocks.push_back(b);
    }
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
