// Medit solutions: fields at the vertices, each of a kind that fixes its number of components.
#pragma once

#include "mesh_io/mesh_io.h"

#include <vector>

namespace qv7 {
namespace tessarium {

// Components of a field of kind 1 (scalar), 2 (vector), 3 (symmetric tensor) or 4 (full matrix)
// in dimension dim; 0 for another kind.
inline std::size_t __solution_components(std::int64_t kind, std::size_t dim) noexcept
{
    switch (kind) {
    case 1:
        return 1;
    case 2:
        return dim;
    case 3:
        return dim * (dim + 1) / 2;
    case 4:
        return dim * dim;
    default:
        return 0;
    }
}

// The kind written for a field of `rows` components: 1, 2 or 3; 0 when it is none of these.
inline int __solution_kind(std::size_t rows, std::size_t dim) noexcept
{
    if (rows == 1) return 1;
    if (rows == dim) return 2;
    if (rows == dim * (dim + 1) / 2) return 3;
    return 0;
}

// The fields at the vertices of a solution file, text (.sol) or binary (.solb), named "sol1",
// "sol2", ... in file order, and their number of vertices. 0, or the failure set in r.
int __read_solution_text(std::string const& path, std::vector<mesh_field>& fields, std::size_t& vertices, io_report& r);
int __read_solution_binary(std::string const& path, std::vector<mesh_field>& fields, std::size_t& vertices,
                           io_report& r);

}  // namespace tessarium
}  // namespace qv7
