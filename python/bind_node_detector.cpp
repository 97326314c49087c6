// The node detector over a points array, with its queries vectorised over many points or boxes.
#include "numpy_arrays.h"

#include "tessarium/node_detector.h"

#include <optional>
#include <pybind11/stl.h>

namespace qv7 {
namespace tessarium {
namespace python {

namespace {

// The detector reads the points at each query, so it keeps the array alive and in place.
struct detector {
    c_array<double> points;
    dense2D<double> pos;
    node_detector tree;

    detector(c_array<double> p, std::optional<c_array<std::uint32_t>> nodes)
        : points(std::move(p)), pos(borrow2D(points))
    {
        int r;
        if (nodes) {
            dense1D<unsigned, 8> ids = borrow1D(*nodes);
            py::gil_scoped_release nogil;
            r = tree.reinit(pos, ids);
        } else {
            py::gil_scoped_release nogil;
            r = pos.empty() ? 0 : tree.reinit(pos);
        }
        raise_if_failed(r, "NodeDetector",
                        {{-1, "points of other than 2 or 3 coordinates"}, {-2, "a node index beyond the points"}});
    }

    template <unsigned D>
    static vector_fixed<double, D> point(double const* p)
    {
        vector_fixed<double, D> v{};
        for (unsigned i = 0; i < D; ++i) v[i] = p[i];
        return v;
    }

    py::array closest(c_array<double> const& queries) const
    {
        std::size_t n = queries.shape(0), d = queries.shape(1);
        py::array_t<std::uint32_t> out(n);
        std::uint32_t* o = out.mutable_data();
        double const* q = queries.data();
        py::gil_scoped_release nogil;
        for (std::size_t i = 0; i < n; ++i)
            o[i] = d == 2 ? tree.find_closest(point<2>(q + 2 * i)) : tree.find_closest(point<3>(q + 3 * i));
        return out;
    }

    py::tuple in_boxes(c_array<double> const& lo, c_array<double> const& hi) const
    {
        std::size_t n = lo.shape(0), d = lo.shape(1);
        dense1D<unsigned, 8> ids, offsets(n + 1);
        if (offsets.size() != n + 1) throw std::bad_alloc();
        double const *a = lo.data(), *b = hi.data();
        {
            py::gil_scoped_release nogil;
            offsets[0] = 0;
            for (std::size_t i = 0; i < n; ++i) {
                if (d == 2)
                    tree.find_in_box(point<2>(a + 2 * i), point<2>(b + 2 * i), ids);
                else
                    tree.find_in_box(point<3>(a + 3 * i), point<3>(b + 3 * i), ids);
                offsets[i + 1] = unsigned(ids.size());
            }
        }
        return py::make_tuple(to_numpy(ids), to_numpy(offsets));
    }
};

}  // namespace

void bind_node_detector(py::module_& m)
{
    py::class_<detector>(m, "NodeDetector")
        .def(py::init<c_array<double>, std::optional<c_array<std::uint32_t>>>())
        .def_readonly("points", &detector::points)
        .def("__len__", [](detector const& d) { return d.tree.size(); })
        .def("find_closest", &detector::closest)
        .def("find_in_box", &detector::in_boxes);
}

}  // namespace python
}  // namespace tessarium
}  // namespace qv7
