// Files and arrays for the tests of the format readers and writers.
#pragma once

#include "tessarium/dense1D.h"
#include "tessarium/dense2D.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

#include <unistd.h>

namespace exchange_test {

// Test processes run side by side: the pid keeps their files apart.
inline std::string temp_path(std::string const& name)
{
    return ::testing::TempDir() + "tessarium_" + std::to_string(::getpid()) + "_" + name;
}

// A path in a folder that does not exist: no open can succeed.
inline std::string unopenable() { return temp_path("no_such_dir/") + "file"; }

inline std::string write_file(std::string const& name, std::string const& text)
{
    std::string path = temp_path(name);
    std::ofstream(path, std::ios::binary) << text;
    return path;
}

inline std::string read_file(std::string const& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

inline bool file_exists(std::string const& path) { return std::ifstream(path).good(); }

template <class T>
std::vector<T> values(qv7::dense1D<T, 8> const& a)
{
    return std::vector<T>(a.begin(), a.end());
}

template <class T>
std::vector<T> column(qv7::dense2D<T> const& M, std::size_t j)
{
    return std::vector<T>(M.col(j), M.col(j) + M.rows());
}

// A matrix of `rows` rows from its columns one after the other.
template <class T>
qv7::dense2D<T> matrix(std::size_t rows, std::initializer_list<T> entries)
{
    qv7::dense2D<T> M;
    M.resize(rows, entries.size() / rows);
    std::size_t k = 0;
    for (T v : entries) M(k % rows, k / rows) = v, ++k;
    return M;
}

template <class T>
qv7::dense1D<T, 8> array(std::vector<T> const& entries)
{
    qv7::dense1D<T, 8> a;
    for (T v : entries) a.push_back(v);
    return a;
}

// Column j of a matrix of `rows` rows holds j * rows, j * rows + 1, ...
inline qv7::dense2D<unsigned> counting(std::size_t rows, std::size_t cols = 1)
{
    qv7::dense2D<unsigned> M;
    M.resize(rows, cols);
    for (std::size_t j = 0; j < cols; ++j)
        for (std::size_t i = 0; i < rows; ++i) M(i, j) = static_cast<unsigned>(j * rows + i);
    return M;
}

// n nodes of 3 coordinates, all 0.5.
inline qv7::dense2D<double> points(std::size_t n)
{
    qv7::dense2D<double> pos;
    pos.resize(3, n, 0.5);
    return pos;
}

// The results of a reader's common form.
struct grouped_read {
    qv7::dense2D<double> pos;
    qv7::dense2D<unsigned> connectM;
    qv7::dense1D<unsigned, 8> indices;
    qv7::dense1D<int, 8> FEs;
    qv7::dense1D<unsigned, 8> per_element;  // property IDs or record values
    int result = 0;
};

// The folder of real files from other software, when this machine has it.
// TESSARIUM_CORPUS_DIR in the environment names another folder than the build's.
inline std::string corpus_dir(std::string const& format)
{
    if (char const* dir = std::getenv("TESSARIUM_CORPUS_DIR"))
        return file_exists(std::string(dir) + "/MANIFEST.md") ? std::string(dir) + "/" + format + "/" : std::string();
#ifdef TESSARIUM_CORPUS_DIR
    std::string dir = std::string(TESSARIUM_CORPUS_DIR) + "/" + format + "/";
    if (file_exists(std::string(TESSARIUM_CORPUS_DIR) + "/MANIFEST.md")) return dir;
#endif
    return {};
}

}  // namespace exchange_test
