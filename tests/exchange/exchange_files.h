// Files, arrays and corpus access for the exchange-format tests.
#pragma once

#include "nodes/node_arrays.h"
#include "tessarium/dense2D.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace exchange_files {

// Test processes run side by side: each has files of its own.
inline std::string temp_path(std::string const& name)
{
    return ::testing::TempDir() + "tessarium_" + std::to_string(::getpid()) + "_" + name;
}

// Writes bytes exactly as given and returns the path.
inline std::string write_file(std::string const& name, std::string const& bytes)
{
    std::string path = temp_path(name);
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
}

inline std::string read_file(std::string const& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline bool exists(std::string const& path)
{
    struct stat st;
    return ::stat(path.c_str(), &st) == 0;
}

// A path in a folder that does not exist, so that no open can succeed.
inline std::string unopenable() { return temp_path("no_such_dir/") + "file"; }

using node_arrays::matrix;

template <class T>
std::vector<T> column(qv7::dense2D<T> const& M, std::size_t j)
{
    return std::vector<T>(M.col(j), M.col(j) + M.rows());
}

// The build's corpus folder, unless TESSARIUM_CORPUS_DIR in the environment names another.
inline std::string corpus_dir()
{
    if (char const* dir = std::getenv("TESSARIUM_CORPUS_DIR")) return dir;
#ifdef TESSARIUM_CORPUS_DIR
    return TESSARIUM_CORPUS_DIR;
#else
    return "";
#endif
}

// Path of a corpus file, or "" when the corpus is not on this machine.
inline std::string corpus_file(std::string const& relative)
{
    std::string path = corpus_dir() + "/" + relative;
    return exists(path) ? path : std::string();
}

}  // namespace exchange_files
