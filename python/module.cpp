// The compiled part of the package `tessarium`: element type tables and the bound operations.
#include "numpy_arrays.h"

#include "tessarium/element_type.h"

namespace py = pybind11;
using namespace qv7;

namespace {

element_type checked(int t)
{
    if (t < 0 || t >= int(nbr_element_types)) throw py::value_error("unknown element type");
    return element_type(t);
}

}  // namespace

PYBIND11_MODULE(_tessarium, m)
{
    m.attr("NONE") = py::int_(NONE_ID);
    m.def("version", &tessarium::version);
    m.def("element_dim", [](int t) { return tessarium::element_dim(checked(t)); });
    m.def("nbr_nodes", [](int t) { return tessarium::nbr_nodes(checked(t)); });
    tessarium::python::bind_operations(m);
    tessarium::python::bind_node_detector(m);
    tessarium::python::bind_mesh_io(m);
}
