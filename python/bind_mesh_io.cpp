// Reading and writing a mesh file in one call. The mesh crosses as plain arrays; the package makes
// a Mesh object of them.
#include "numpy_arrays.h"

#include "mesh_io/cell_kinds.h"
#include "tessarium/mesh.h"

#include <optional>
#include <pybind11/stl.h>

namespace qv7 {
namespace tessarium {
namespace python {

namespace {

using block_t = std::tuple<int, c_array<std::uint32_t>, std::optional<c_array<std::uint32_t>>>;
using field_t = std::pair<std::string, c_array<double>>;

void raise_io(io_report const& r)
{
    if (r.code == io_no_memory) throw std::bad_alloc();
    PyObject* kind = r.code == io_cannot_open || r.code == io_write_failed ? PyExc_OSError : PyExc_ValueError;
    PyErr_SetString(kind, r.message.c_str());
    throw py::error_already_set();
}

py::list passed_over(io_report const& r)
{
    py::list out;
    for (io_count const& c : r.passed_over) out.append(py::make_tuple(c.what, c.count));
    return out;
}

py::list fields_out(std::vector<mesh_field> const& fields)
{
    py::list out;
    for (mesh_field const& f : fields) out.append(py::make_tuple(f.name, to_numpy(f.values, f.values.rows())));
    return out;
}

py::tuple read(std::string const& path, bool binary)
{
    mesh m;
    io_report r;
    {
        py::gil_scoped_release nogil;
        r = read_mesh(path, m, io_options{false, binary});
    }
    if (!r) raise_io(r);
    py::list blocks;
    for (element_block const& b : m.blocks)
        blocks.append(py::make_tuple(int(b.type), to_numpy(b.connect, nbr_nodes(b.type)), to_numpy(b.references)));
    py::object ids = m.node_IDs.empty() ? py::object(py::none()) : py::object(to_numpy(m.node_IDs));
    return py::make_tuple(to_numpy(m.pos, 3), ids, blocks, fields_out(m.node_fields), fields_out(m.element_fields),
                          passed_over(r));
}

std::vector<mesh_field> fields_in(std::vector<field_t> const& fields)
{
    std::vector<mesh_field> out;
    for (field_t const& f : fields) out.push_back({f.first, borrow2D(f.second)});
    return out;
}

py::list write(std::string const& path, c_array<double> const& points, std::optional<c_array<std::uint32_t>> ids,
               std::vector<block_t> const& blocks, std::vector<field_t> const& node_fields,
               std::vector<field_t> const& element_fields, bool faithful, bool binary)
{
    mesh m;
    m.pos = borrow2D(points);
    if (ids) m.node_IDs = borrow1D(*ids);
    for (block_t const& b : blocks) {
        element_block block;
        block.type = element_type(std::get<0>(b));
        block.connect = borrow2D(std::get<1>(b));
        if (std::get<2>(b)) block.references = borrow1D(*std::get<2>(b));
        m.blocks.push_back(block);
    }
    m.node_fields = fields_in(node_fields);
    m.element_fields = fields_in(element_fields);
    io_report r;
    {
        py::gil_scoped_release nogil;
        r = write_mesh(path, m, io_options{faithful, binary});
    }
    if (!r) raise_io(r);
    return passed_over(r);
}

// Position p of a VTK cell holds the library's local node vtk_order(type)[p]; None where VTK has
// no such cell.
py::object vtk_order(int type)
{
    if (type < 0 || type >= int(nbr_element_types) || !__vtk_cells[type].name) return py::none();
    __cell_kind const& k = __vtk_cells[type];
    return py::cast(std::vector<int>(k.nodes, k.nodes + k.count));
}

}  // namespace

void bind_mesh_io(py::module_& m)
{
    m.def("read", &read);
    m.def("write", &write);
    m.def("vtk_order", &vtk_order);
}

}  // namespace python
}  // namespace tessarium
}  // namespace qv7
