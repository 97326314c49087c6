// A mesh as one value, and reading and writing it by file extension.
//
//   qv7::tessarium::mesh m;
//   io_report r = read_mesh("part.bdf", m);
//   if (r) r = write_mesh("part.vtk", m);
//   if (!r) std::puts(r.message.c_str());
#pragma once

#include "dense1D.h"
#include "dense2D.h"
#include "element_type.h"
#include "export.h"

#include <array>
#include <cstddef>
#include <string>
#include <vector>

TESSARIUM_EXPORT_BEGIN
namespace qv7 {
namespace tessarium {

// Elements of one pure type: one column per element, nbr_nodes(type) rows of zero-based node
// columns in the library's local order. The blocks read_mesh gives may be views on one array
// (nothing is copied): `copy` a block's arrays before growing them.
struct element_block {
    element_type type = ET_NONE;
    dense2D<unsigned> connect;
    dense1D<unsigned, 8> references;  // empty, or one per element (property IDs, groups)
};

// Values by name: one column per node, or per element in block order, one row per component.
struct mesh_field {
    std::string name;
    dense2D<double> values;
};

struct mesh {
    dense2D<double> pos;            // 2 or 3 rows, one column per node
    dense1D<unsigned, 8> node_IDs;  // empty (node j is j + 1), or one per node
    std::vector<element_block> blocks;
    std::vector<mesh_field> node_fields;
    std::vector<mesh_field> element_fields;

    std::size_t nbr_nodes() const noexcept { return pos.cols(); }
    std::size_t nbr_elements() const noexcept
    {
        std::size_t n = 0;
        for (element_block const& b : blocks) n += b.connect.cols();
        return n;
    }
    bool empty() const noexcept { return pos.cols() == 0 && nbr_elements() == 0; }
    void clear()
    {
        pos.clear();
        node_IDs.resize(0);
        blocks.clear();
        node_fields.clear();
        element_fields.clear();
    }
};

// Elements per element_type value.
TESSARIUM_API std::array<std::size_t, nbr_element_types> count_by_type(mesh const& m);

// Smallest and largest coordinate of the nodes on each axis (0.0 for an axis pos lacks).
// False, leaving lo and hi unchanged, for a mesh without nodes.
TESSARIUM_API bool bounding_box(mesh const& m, double (&lo)[3], double (&hi)[3]);

// The blocks of dimension `dim` as one padded mixed connectivity: dim 3 gives ET_SOLID_MIX of
// 8 rows (tetrahedra, pyramids, wedges, hexahedra), dim 2 ET_FACE_MIX of 4 rows (triangles,
// quadrangles), in block order. Higher-order elements give their corner nodes. The number of
// columns, -1 for another dim, -199 when the array cannot be had.
TESSARIUM_API int to_mixed(mesh const& m, unsigned dim, dense2D<unsigned>& connectM, element_type& FE);

// Appends the columns of a connectivity of type FE, mixed or not, as blocks of pure types, in
// the order tetrahedra, pyramids, wedges, hexahedra (triangles, quadrangles), each keeping column
// order. The number of columns added; -3 when check_IDs refuses connectM against the nodes of m;
// -199 when an array cannot be had.
TESSARIUM_API int add_mixed(mesh& m, dense2D<unsigned> const& connectM, element_type FE);

// ---- files ----

enum io_code : int {
    io_ok = 0,
    io_cannot_open = -1,   // missing file, a directory, no permission
    io_malformed = -2,     // empty, truncated, not this format
    io_bad_mesh = -3,      // the mesh handed to write_mesh is inconsistent
    io_unsupported = -4,   // unknown extension, or no reader for this format yet
    io_write_failed = -5,  // the disk refused the data (full, quota, removed)
    io_no_memory = -199,
};

// A name and how many times it occurred.
struct io_count {
    std::string what;
    std::size_t count;
};

struct io_report {
    int code = io_ok;
    std::string message;       // on failure: the file, the line or record, and what was wrong
    std::size_t nodes = 0;     // read or written
    std::size_t elements = 0;  // read or written
    // Reading: cards, keywords or blocks passed over. Writing: what the format cannot hold
    // (element types, references, fields), left out of the file.
    std::vector<io_count> passed_over;
    explicit operator bool() const noexcept { return code >= 0; }
};

struct io_options {
    bool faithful = false;  // read and write with the format functions (their exact bytes and limits)
    bool binary = false;    // STL and gmsh: the binary form
};

// The format comes from the extension, in any case: .stl, .obj, .bdf .nas .dat, .neu,
// .meshb, .mesh .sol, .vtk, .case, .msh. On failure m is left empty.
TESSARIUM_API io_report read_mesh(char const* path, mesh& m, io_options const& options = {});
inline io_report read_mesh(std::string const& path, mesh& m, io_options const& options = {})
{
    return read_mesh(path.c_str(), m, options);
}

// Appends the fields at the vertices of a Medit solution, text (.sol) or binary (.solb), to the
// node fields of m, named "sol1", "sol2", ... in file order; the solution must hold as many
// vertices as m has nodes. On failure m is left as it was.
TESSARIUM_API io_report read_fields(char const* path, mesh& m, io_options const& options = {});
inline io_report read_fields(std::string const& path, mesh& m, io_options const& options = {})
{
    return read_fields(path.c_str(), m, options);
}

// The mesh is checked before any file is made; the file is written under a temporary name in
// the same folder and renamed at the end, so a failed write leaves no file and never half a file.
TESSARIUM_API io_report write_mesh(char const* path, mesh const& m, io_options const& options = {});
inline io_report write_mesh(std::string const& path, mesh const& m, io_options const& options = {})
{
    return write_mesh(path.c_str(), m, options);
}

}  // namespace tessarium
}  // namespace qv7
TESSARIUM_EXPORT_END
