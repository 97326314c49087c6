// Small helpers for the writer tests: arrays from literal lists, temporary paths, file contents.
#pragma once

#include "tessarium/element_type.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

#include <unistd.h>

namespace writer_files {

// A matrix of `rows` rows from its values listed column after column.
template <class T>
qv7::dense2D<T> matrix(std::size_t rows, std::initializer_list<T> values)
{
    qv7::dense2D<T> M;
    if (rows == 0 || values.size() == 0) return M;
    M.resize(rows, values.size() / rows);
    std::size_t k = 0;
    for (T v : values) M(k % rows, k / rows) = v, ++k;
    return M;
}

inline qv7::dense2D<unsigned> connect(std::size_t rows, std::initializer_list<unsigned> values)
{
    return matrix<unsigned>(rows, values);
}

inline qv7::dense2D<double> coords(std::size_t rows, std::initializer_list<double> values)
{
    return matrix<double>(rows, values);
}

// One column holding 0, 1, ..., rows - 1: an element whose written nodes show which local rows
// a writer picks.
inline qv7::dense2D<unsigned> local_rows(std::size_t rows)
{
    qv7::dense2D<unsigned> M;
    M.resize(rows, 1);
    for (std::size_t r = 0; r < rows; ++r) M(r, 0) = static_cast<unsigned>(r);
    return M;
}

// n nodes on the x axis at x = 0, 1, ..., n - 1, with `rows` coordinates each.
inline qv7::dense2D<double> line_of_nodes(std::size_t rows, unsigned n)
{
    qv7::dense2D<double> pos;
    pos.resize(rows, n, 0.0);
    for (unsigned j = 0; j < n; ++j) pos(0, j) = j;
    return pos;
}

// The unit cube's corners (bottom face first) and an apex at (0.5, 0.5, 2).
inline qv7::dense2D<double> cube_and_apex()
{
    return coords(3, {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 0, 0, 1, 1, 0, 1, 1, 1, 1, 0, 1, 1, 0.5, 0.5, 2});
}

// Over cube_and_apex: a tetrahedron, a hexahedron, a pyramid, a wedge and a tetrahedron.
inline qv7::dense2D<unsigned> mixed_solids()
{
    constexpr unsigned N = qv7::NONE_ID;
    return connect(8, {0, 1, 2, 4, N, N, N, N,  //
                       0, 1, 2, 3, 4, 5, 6, 7,  //
                       0, 1, 2, 3, 8, N, N, N,  //
                       0, 1, 2, 4, 5, 6, N, N,  //
                       1, 2, 3, 8, N, N, N, N});
}

// A triangle, a quadrangle and a triangle.
inline qv7::dense2D<unsigned> mixed_faces()
{
    constexpr unsigned N = qv7::NONE_ID;
    return connect(4, {0, 1, 2, N, 4, 5, 6, 7, 5, 6, 7, N});
}

// A fresh path in the test temporary directory, private to this process.
inline std::string temp_path(std::string const& name)
{
    std::string path = ::testing::TempDir() + "tessarium_" + std::to_string(getpid()) + "_" + name;
    std::remove(path.c_str());
    return path;
}

inline bool exists(std::string const& path)
{
    std::ifstream in(path);
    return in.good();
}

inline std::string contents(std::string const& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream all;
    all << in.rdbuf();
    return all.str();
}

// A path whose directory does not exist, so that opening it for writing fails.
inline std::string unwritable_path() { return ::testing::TempDir() + "no_such_directory_tessarium/out.txt"; }

}  // namespace writer_files
