// The operations on whole arrays: repair, connectivity, edges, quality, size maps and transforms.
// Inputs arrive as C-order arrays of the right dtype (the package converts them) and are read in
// place; results come back on the library's own storage.
#include "numpy_arrays.h"

#include "connectivity/nbr_nodes_of_boundaries.h"
#include "tessarium/connectivity.h"
#include "tessarium/edges.h"
#include "tessarium/gradation.h"
#include "tessarium/metric_measures.h"
#include "tessarium/metrics.h"
#include "tessarium/quality.h"
#include "tessarium/repair.h"
#include "tessarium/transforms.h"

#include <pybind11/stl.h>

#include <numeric>
#include <optional>

namespace qv7 {
namespace tessarium {
namespace python {

namespace {

using points_t = c_array<double>;
using ids_t = c_array<std::uint32_t>;
using nogil = py::gil_scoped_release;

template <class F>
int without_gil(F&& f)
{
    nogil _;
    return f();
}

element_type as_type(int type)
{
    if (type <= ET_NONE || type >= int(nbr_element_types)) throw py::value_error("unknown element type");
    return element_type(type);
}

py::array neighbors(ids_t const& cells, int type_value, bool non_manifold)
{
    element_type type = as_type(type_value);
    dense2D<unsigned> connect = borrow2D(cells), nb;
    int r = without_gil([&] { return get_neighbors(connect, type, non_manifold, nb); });
    raise_if_failed(r, "neighbors", {{-1, "cells do not fit the element type"}, {-2, "unsupported element type"}});
    return to_numpy(nb, nbr_boundaries(__narrow(type, connect.rows())));
}

py::array free_faces(ids_t const& cells, int type_value, ids_t const& nb)
{
    element_type type = as_type(type_value);
    dense2D<unsigned> connect = borrow2D(cells), neighbors = borrow2D(nb), faces;
    int r = without_gil([&] { return get_mesh_boundaries(connect, neighbors, type, faces); });
    raise_if_failed(r, "free_faces",
                    {{-1, "cells do not fit the element type"},
                     {-2, "neighbors do not fit the cells"},
                     {-3, "unsupported element type"}});
    return to_numpy(faces, nbr_nodes_of_boundaries(__narrow(type, connect.rows())));
}

py::tuple free_face_ids(ids_t const& cells, int type_value, ids_t const& nb)
{
    element_type type = as_type(type_value);
    dense2D<unsigned> connect = borrow2D(cells), neighbors = borrow2D(nb);
    dense1D<unsigned, 8> ids;
    unsigned stride = 0;
    int r = without_gil([&] { return get_mesh_bounding_elements(connect, neighbors, type, ids, stride); });
    raise_if_failed(r, "free_face_ids",
                    {{-1, "cells do not fit the element type"},
                     {-2, "unsupported element type, or neighbors do not fit the cells"}});
    return py::make_tuple(to_numpy(ids), stride);
}

py::tuple skin_owners(ids_t const& skin, ids_t const& cells, int type_value, ids_t const& nb)
{
    element_type type = as_type(type_value);
    dense2D<unsigned> faces = borrow2D(skin), connect = borrow2D(cells), neighbors = borrow2D(nb);
    dense1D<unsigned, 8> ancestors, ids;
    unsigned stride = 0;
    int r;
    {
        nogil _;
        r = get_ancestors(connect, ancestors);
        if (r == 0) r = get_elements_on_boundaries(faces, connect, neighbors, ancestors, type, ids, stride);
    }
    raise_if_failed(r, "skin_owners",
                    {{-1, "faces do not fit the element type"},
                     {-2, "cells do not fit the element type"},
                     {-3, "neighbors do not fit the cells"},
                     {-4, "a face names a node that no cell uses"},
                     {-5, "unsupported element type"}});
    return py::make_tuple(to_numpy(ids), stride);
}

py::tuple subdomains(ids_t const& nb)
{
    dense2D<unsigned> neighbors = borrow2D(nb);
    dense1D<unsigned, 8> indices, offsets;
    int r = without_gil([&] { return get_subdomains(neighbors, indices, offsets); });
    raise_if_failed(r, "subdomains", {});
    return py::make_tuple(to_numpy(indices), to_numpy(offsets));
}

py::array edges(ids_t const& cells, int type_value)
{
    element_type type = as_type(type_value);
    dense2D<unsigned> connect = borrow2D(cells), out;
    int r = without_gil([&] { return copy_edges(connect, type, out); });
    raise_if_failed(r, "edges", {{-1, "cells do not fit the element type"}});
    return to_numpy(out, 2);
}

template <int (*F)(dense2D<double> const&, dense2D<unsigned> const&, element_type, dense1D<double, 8>&)>
py::array per_element(points_t const& points, ids_t const& cells, int type_value)
{
    element_type type = as_type(type_value);
    dense2D<double> pos = borrow2D(points);
    dense2D<unsigned> connect = borrow2D(cells);
    dense1D<double, 8> out;
    int r = without_gil([&] { return F(pos, connect, type, out); });
    raise_if_failed(r, "quality", {{-2, "cells name nodes beyond the points"}, {-3, "unsupported element type"}});
    return to_numpy(out);
}

py::array size_map(points_t const& points, ids_t const& cells, int type_value, double power)
{
    element_type type = as_type(type_value);
    dense2D<double> pos = borrow2D(points);
    dense2D<unsigned> connect = borrow2D(cells);
    dense1D<double, 8> sizes;
    int r;
    {
        nogil _;
        r = metrics_gen_iso(pos, connect, type, sizes, power);
        if (r == 0 && sizes.size() < pos.cols() && !sizes.push_back_n(0.0, pos.cols() - sizes.size())) r = -199;
    }
    raise_if_failed(r, "size_map",
                    {{-1, "cells of a higher dimension than the points"},
                     {-2, "cells name nodes beyond the points"},
                     {-3, "unsupported element type (linear elements only)"},
                     {-5, "negative power"}});
    return to_numpy(sizes);
}

py::dict edge_lengths(points_t const& points, ids_t const& cells, int type_value, c_array<double> const& sizes,
                      std::vector<double> bin_edges)
{
    element_type type = as_type(type_value);
    dense2D<double> pos = borrow2D(points);
    dense2D<unsigned> connect = borrow2D(cells), excluded;
    dense1D<double, 8> metrics = borrow1D(sizes);
    misc::histogram hist(std::move(bin_edges));
    int r = without_gil([&] { return edge_qualities(pos, connect, type, metrics, hist, excluded); });
    raise_if_failed(r, "edge_lengths",
                    {{-1, "points of other than 2 or 3 coordinates"},
                     {-2, "cells name nodes beyond the points"},
                     {-4, "an edge end has no valid size"}});
    std::vector<std::size_t> counts(hist.bin_count());
    for (std::size_t i = 0; i < counts.size(); ++i) counts[i] = hist.bin(i);
    py::dict d;
    d["edges"] = r;
    d["counts"] = py::array(py::cast(counts));
    d["underflow"] = hist.underflow();
    d["overflow"] = hist.overflow();
    d["min"] = hist.min();
    d["max"] = hist.max();
    d["sum"] = hist.sum();
    return d;
}

py::array h_shock(points_t const& points, ids_t const& edge_array, c_array<double> const& sizes)
{
    dense2D<double> pos = borrow2D(points);
    dense2D<unsigned> e = borrow2D(edge_array);
    dense1D<double, 8> metrics = borrow1D(sizes), vals;
    int r = without_gil([&] { return H_shock(pos, e, metrics, vals); });
    raise_if_failed(r, "h_shock",
                    {{-1, "points of other than 2 or 3 coordinates"}, {-2, "edges name nodes beyond the points"}});
    return to_numpy(vals);
}

template <class T>
dense2D<T> own_copy(c_array<T> const& a)
{
    dense2D<T> out;
    if (!out.copy(borrow2D(a))) throw std::bad_alloc();
    return out;
}

// On a copy of the sizes (1D) or tensors (2D, one row per node).
template <class Sizes>
py::tuple bound_gradation(points_t const& points, ids_t const& cells, int type_value, c_array<double> const& sizes,
                          double bound, ids_t const& nodes, bool frozen, int direction)
{
    element_type type = as_type(type_value);
    dense2D<double> pos = borrow2D(points);
    dense2D<unsigned> connect = borrow2D(cells);
    dense1D<unsigned, 8> list = borrow1D(nodes);
    Sizes metrics;
    if constexpr (std::is_same<Sizes, dense2D<double>>::value) {
        metrics = own_copy(sizes);
    } else if (!metrics.copy(borrow1D(sizes))) {
        throw std::bad_alloc();
    }
    int r = without_gil(
        [&] { return bound_metric_gradations(pos, connect, type, list, frozen, direction, bound, metrics); });
    raise_if_failed(r, "bound_gradation",
                    {{-1, "points of other than 2 or 3 coordinates"},
                     {-2, "cells do not fit the element type or the points"},
                     {-4, "a listed node beyond the points"},
                     {-7, "negative bound"},
                     {-8, "sizes of the wrong shape for the points"}});
    if constexpr (std::is_same<Sizes, dense2D<double>>::value)
        return py::make_tuple(to_numpy(metrics, sizes.shape(1)), r);
    else
        return py::make_tuple(to_numpy(metrics), r);
}

py::array merge_nodes(points_t const& points, double tol)
{
    dense2D<double> pos = borrow2D(points);
    dense1D<unsigned, 8> all(pos.cols()), survivors;
    if (all.size() != pos.cols()) throw std::bad_alloc();
    std::iota(all.begin(), all.end(), 0u);
    int r = without_gil([&] { return merge(pos, all, survivors, tol); });
    raise_if_failed(r, "merge_nodes", {{-1, "points of other than 2 or 3 coordinates"}, {-4, "negative tolerance"}});
    return to_numpy(survivors);
}

py::tuple remove_degenerate(ids_t const& cells, bool strict)
{
    dense2D<unsigned> connect = own_copy(cells);
    dense1D<unsigned, 8> index;
    int r = without_gil([&] { return remove_degenerated(connect, index, strict); });
    raise_if_failed(r, "remove_degenerate", {});
    return py::make_tuple(to_numpy(connect, cells.ndim() == 2 ? cells.shape(1) : 0), to_numpy(index));
}

py::tuple remove_unused_nodes(points_t const& points, ids_t const& cells, unsigned keep)
{
    dense2D<double> pos = own_copy(points);
    dense2D<unsigned> connect = own_copy(cells);
    dense1D<unsigned, 8> index;
    int r = without_gil([&] { return simplify(pos, connect, index, keep); });
    raise_if_failed(r, "remove_unused_nodes", {{-2, "cells name nodes beyond the points"}});
    return py::make_tuple(to_numpy(pos, points.shape(1)), to_numpy(connect, cells.shape(1)), to_numpy(index));
}

// Transforms: on a copy of the points, for all nodes or for the nodes listed.
template <unsigned D, class F>
py::array transformed(points_t const& points, c_array<std::uint32_t> const* nodes, F&& f)
{
    dense2D<double> pos = own_copy(points);
    {
        nogil _;
        if (nodes) {
            dense1D<unsigned, 8> ids = borrow1D(*nodes);
            f(pos, &ids);
        } else {
            f(pos, nullptr);
        }
    }
    return to_numpy(pos, std::max<std::size_t>(points.shape(1), D));
}

template <unsigned D>
vector_fixed<double, D> fixed(std::vector<double> const& v)
{
    vector_fixed<double, D> out{};
    for (unsigned i = 0; i < D; ++i) out[i] = v[i];
    return out;
}

template <unsigned D>
py::array translate_points(points_t const& points, std::vector<double> t, std::optional<ids_t> nodes)
{
    return transformed<D>(points, nodes ? &*nodes : nullptr, [&](dense2D<double>& p, dense1D<unsigned, 8>* ids) {
        ids ? translate(p, fixed<D>(t), *ids) : translate(p, fixed<D>(t));
    });
}

py::array rotate_points_2d(points_t const& points, std::vector<double> c, double angle, std::optional<ids_t> nodes)
{
    return transformed<2>(points, nodes ? &*nodes : nullptr, [&](dense2D<double>& p, dense1D<unsigned, 8>* ids) {
        ids ? rotate(p, fixed<2>(c), angle, *ids) : rotate(p, fixed<2>(c), angle);
    });
}

py::array rotate_points_3d(points_t const& points, std::vector<double> c, std::vector<double> rv,
                           std::optional<ids_t> nodes)
{
    return transformed<3>(points, nodes ? &*nodes : nullptr, [&](dense2D<double>& p, dense1D<unsigned, 8>* ids) {
        ids ? rotate(p, fixed<3>(c), fixed<3>(rv), *ids) : rotate(p, fixed<3>(c), fixed<3>(rv));
    });
}

template <unsigned D>
py::array zoom_points(points_t const& points, std::vector<double> c, double factor, std::optional<ids_t> nodes)
{
    return transformed<D>(points, nodes ? &*nodes : nullptr, [&](dense2D<double>& p, dense1D<unsigned, 8>* ids) {
        ids ? zoom(p, fixed<D>(c), factor, *ids) : zoom(p, fixed<D>(c), factor);
    });
}

}  // namespace

void bind_operations(py::module_& m)
{
    m.def("neighbors", &neighbors);
    m.def("free_faces", &free_faces);
    m.def("free_face_ids", &free_face_ids);
    m.def("skin_owners", &skin_owners);
    m.def("subdomains", &subdomains);
    m.def("edges", &edges);
    m.def("jacobians", &per_element<jacobians>);
    m.def("qualities", &per_element<shape_qualities>);
    m.def("size_map", &size_map);
    m.def("edge_lengths", &edge_lengths);
    m.def("h_shock", &h_shock);
    m.def("bound_gradation_sizes", &bound_gradation<dense1D<double, 8>>);
    m.def("bound_gradation_tensors", &bound_gradation<dense2D<double>>);
    m.def("merge_nodes", &merge_nodes);
    m.def("remove_degenerate", &remove_degenerate);
    m.def("remove_unused_nodes", &remove_unused_nodes);
    m.def("translate2", &translate_points<2>);
    m.def("translate3", &translate_points<3>);
    m.def("rotate2", &rotate_points_2d);
    m.def("rotate3", &rotate_points_3d);
    m.def("zoom2", &zoom_points<2>);
    m.def("zoom3", &zoom_points<3>);
}

}  // namespace python
}  // namespace tessarium
}  // namespace qv7
