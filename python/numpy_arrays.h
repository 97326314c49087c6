// Numpy arrays as library arrays and back. An (n, k) C-order array is n runs of k values, which is
// the one-column-per-node (per-element) layout of a dense2D of k rows: both ways share the memory.
#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include "tessarium/dense1D.h"
#include "tessarium/dense2D.h"

#include <cstdint>
#include <string>

namespace qv7 {
namespace tessarium {
namespace python {

namespace py = pybind11;

template <class T>
using c_array = py::array_t<T, py::array::c_style>;

// A block on memory that the library does not own: never freed by it, and left behind (copied
// out) by any operation that grows the array.
template <class T>
vector_num<T, 8>* __borrowed_block(T const* data, std::size_t n)
{
    auto* block = new vector_num<T, 8>;
    block->data = const_cast<T*>(data);
    block->capacity = n;
    block->shift = vector_num<T, 8>::not_owned;
    return block;
}

// The rows of a 2D array (1 for a 1D one) as the columns of a matrix.
template <class T>
dense2D<T> borrow2D(c_array<T> const& a)
{
    dense2D<T> m;
    std::size_t cols = a.ndim() ? a.shape(0) : 0, rows = a.ndim() == 2 ? a.shape(1) : 1;
    if (rows * cols == 0) return m;
    m.__share(__borrowed_block(a.data(), rows * cols));
    m.resize(rows, cols);
    return m;
}

template <class T>
dense1D<T, 8> borrow1D(c_array<T> const& a)
{
    if (a.size() == 0) return {};
    return dense1D<T, 8>(__borrowed_block(a.data(), a.size()), a.size(), 0);
}

template <class H>
py::capsule __keeper(H const& handle)
{
    return py::capsule(new H(handle), [](void* p) { delete static_cast<H*>(p); });
}

template <class T>
bool __borrowed(dense_handle<T> const& h)
{
    return h.storage()->shift == vector_num<T, 8>::not_owned;
}

// A matrix as an (cols, rows) array on its own block, which the array keeps alive. An empty matrix
// gives (0, width).
template <class T>
py::array_t<T> to_numpy(dense2D<T> m, std::size_t width)
{
    if (m.empty()) return py::array_t<T>(std::vector<py::ssize_t>{0, py::ssize_t(width)});
    if (__borrowed(m)) {
        dense2D<T> own;
        if (!own.copy(m)) throw std::bad_alloc();
        m = own;
    }
    std::vector<py::ssize_t> shape{py::ssize_t(m.cols()), py::ssize_t(m.rows())};
    std::vector<py::ssize_t> strides{py::ssize_t(m.ld() * sizeof(T)), py::ssize_t(sizeof(T))};
    return py::array_t<T>(shape, strides, m.data(), __keeper(m));
}

template <class T>
py::array_t<T> to_numpy(dense1D<T, 8> v)
{
    if (v.empty()) return py::array_t<T>(std::vector<py::ssize_t>{0});
    if (__borrowed(v)) {
        dense1D<T, 8> own;
        if (!own.copy(v)) throw std::bad_alloc();
        v = own;
    }
    return py::array_t<T>({py::ssize_t(v.size())}, {py::ssize_t(sizeof(T))}, v.data(), __keeper(v));
}

// Raises for a negative result: MemoryError for -199, else ValueError naming the call and the cause.
struct code_meaning {
    int code;
    char const* text;
};
inline void raise_if_failed(int code, char const* what, std::initializer_list<code_meaning> meanings)
{
    if (code >= 0) return;
    if (code == -199) throw std::bad_alloc();
    std::string text = "unexpected failure";
    for (code_meaning const& m : meanings)
        if (m.code == code) text = m.text;
    throw py::value_error(std::string(what) + ": " + text + " (code " + std::to_string(code) + ")");
}

void bind_operations(py::module_& m);
void bind_node_detector(py::module_& m);
void bind_mesh_io(py::module_& m);

}  // namespace python
}  // namespace tessarium
}  // namespace qv7
