#include "mesh_io/mesh_io.h"

namespace qv7 {
namespace tessarium {

int __fail(io_report& r, int code, std::string const& file, std::string const& what)
{
    r.code = code;
    r.message = file + ": " + what;
    return code;
}

void __pass_over(io_report& r, std::string const& what, std::size_t n)
{
    if (n == 0) return;
    for (io_count& c : r.passed_over)
        if (c.what == what) {
            c.count += n;
            return;
        }
    r.passed_over.push_back({what, n});
}

char const* __type_name(element_type type) noexcept
{
    static char const* const names[nbr_element_types] = {
        "NONE",      "NODE",    "EDGE_MIX", "EDGE2",     "EDGE3",  "FACE_MIX", "FACE_T3",  "FACE_Q4",
        "FACE_T6",   "FACE_Q8", "FACE_Q9",  "SOLID_MIX", "TETRA4", "TETRA10",  "PYRAMID5", "PYRAMID13",
        "PYRAMID14", "WEDGE6",  "WEDGE15",  "WEDGE18",   "HEXA8",  "HEXA20",   "HEXA27"};
    return type >= 0 && type < static_cast<int>(nbr_element_types) ? names[type] : "unknown type";
}

std::string __ordinal(char const* noun, std::size_t zero_based)
{
    return std::string(noun) + " " + std::to_string(zero_based + 1);
}

void __count_written(io_report& r, mesh const& m, bool (*keeps)(element_type))
{
    r.nodes = m.nbr_nodes();
    for (element_block const& b : m.blocks) {
        if (keeps(b.type))
            r.elements += b.connect.cols();
        else
            __pass_over(r, std::string(__type_name(b.type)) + " elements", b.connect.cols());
    }
}

}  // namespace tessarium
}  // namespace qv7
