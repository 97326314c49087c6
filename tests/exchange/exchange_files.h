// Files, arrays and meshes for the tests of the format readers and writers.
#pragma once

#include "exchange/node_columns.h"
#include "support/failing_alloc.h"
#include "tessarium/dense1D.h"
#include "tessarium/dense2D.h"
#include "tessarium/element_type.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <initializer_list>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

namespace exchange_test {

// ---- files ----

// A fresh path in the test temporary directory, private to this process.
inline std::string temp_path(std::string const& name)
{
    std::string path = ::testing::TempDir() + "tessarium_" + std::to_string(getpid()) + "_" + name;
    std::remove(path.c_str());
    return path;
}

// A path whose directory does not exist, so that opening it fails.
inline std::string unwritable_path() { return temp_path("no_such_directory/out.txt"); }

inline std::string write_file(std::string const& name, std::string const& text)
{
    std::string path = temp_path(name);
    std::ofstream(path, std::ios::binary) << text;
    return path;
}

inline std::string contents(std::string const& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

inline bool exists(std::string const& path) { return std::ifstream(path).good(); }

// The folder of real files from other software, when this machine has it.
inline std::string corpus_dir(std::string const& format)
{
#ifdef TESSARIUM_CORPUS_DIR
    if (exists(std::string(TESSARIUM_CORPUS_DIR) + "/MANIFEST.md")) return TESSARIUM_CORPUS_DIR "/" + format + "/";
#endif
    return {};
}

// ---- other programs ----

// Runs a script of tests/ (path from the source folder) with /usr/bin/python3 on a file, and
// gathers the "name count" lines it prints; false when the program the script needs is not
// installed (exit status 77) or there is no Python.
inline bool run_read_script(char const* script, char const* reader, std::string const& path,
                            std::map<std::string, long>& found)
{
    std::string command = std::string("/usr/bin/python3 ") + TESSARIUM_SOURCE_DIR + "/" + script + " " + reader +
                          " '" + path + "' 2>&1";
    std::FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return false;
    std::string output;
    std::array<char, 256> chunk;
    while (std::fgets(chunk.data(), chunk.size(), pipe)) output += chunk.data();
    int status = pclose(pipe);
    if (!WIFEXITED(status) || WEXITSTATUS(status) == 77 || WEXITSTATUS(status) == 127) return false;
    EXPECT_EQ(WEXITSTATUS(status), 0) << output;
    std::istringstream lines(output);
    std::string name;
    long n;
    while (lines >> name >> n) found[name] = n;
    return true;
}

// ---- arrays ----

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

template <class T>
qv7::dense1D<T, 8> array(std::vector<T> const& entries)
{
    qv7::dense1D<T, 8> a;
    for (T v : entries) a.push_back(v);
    return a;
}

// A matrix of `rows` rows from its values listed column after column.
template <class T>
qv7::dense2D<T> matrix(std::size_t rows, std::initializer_list<T> entries)
{
    qv7::dense2D<T> M;
    if (rows == 0 || entries.size() == 0) return M;
    M.resize(rows, entries.size() / rows);
    std::size_t k = 0;
    for (T v : entries) M(k % rows, k / rows) = v, ++k;
    return M;
}

inline qv7::dense2D<unsigned> connect(std::size_t rows, std::initializer_list<unsigned> entries)
{
    return matrix<unsigned>(rows, entries);
}

inline qv7::dense2D<double> coords(std::size_t rows, std::initializer_list<double> entries)
{
    return matrix<double>(rows, entries);
}

// Column j holds j * rows, j * rows + 1, ...: the written nodes of the first element show which
// local rows a writer takes.
inline qv7::dense2D<unsigned> counting(std::size_t rows, std::size_t cols = 1)
{
    qv7::dense2D<unsigned> M;
    M.resize(rows, cols);
    for (std::size_t j = 0; j < cols; ++j)
        for (std::size_t i = 0; i < rows; ++i) M(i, j) = static_cast<unsigned>(j * rows + i);
    return M;
}

// ---- meshes ----

// One group per type, of one element whose nodes are its local rows (no element for ET_NONE):
// the written nodes show which local rows a writer takes.
struct typed_groups {
    std::vector<qv7::dense2D<unsigned>> groups;
    qv7::dense1D<int, 8> FEs;
    qv7::dense2D<unsigned> const* first() const { return groups.data(); }
    qv7::dense2D<unsigned> const* last() const { return groups.data() + groups.size(); }
};

inline typed_groups one_element_per_type(std::vector<qv7::element_type> const& types)
{
    typed_groups t;
    for (qv7::element_type type : types) {
        t.groups.push_back(type == qv7::ET_NONE ? qv7::dense2D<unsigned>() : counting(qv7::tessarium::nbr_nodes(type)));
        t.FEs.push_back(type);
    }
    return t;
}

// n nodes of 3 coordinates, all 0.5.
inline qv7::dense2D<double> points(std::size_t n)
{
    qv7::dense2D<double> pos;
    pos.resize(3, n, 0.5);
    return pos;
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

// ---- readers ----

using V = std::vector<unsigned>;
using P = std::vector<double>;
using T = std::vector<int>;

// The results of a reader's common form.
struct grouped_read {
    qv7::dense2D<double> pos;
    qv7::dense2D<unsigned> connectM;
    qv7::dense1D<unsigned, 8> indices;
    qv7::dense1D<int, 8> FEs;
    qv7::dense1D<unsigned, 8> per_element;  // property IDs or record values
    int result = 0;
};

using stream_reader = int (*)(std::istream&, qv7::dense2D<double>&, qv7::dense2D<unsigned>&,
                              qv7::dense1D<unsigned, 8>&, qv7::dense1D<int, 8>&, qv7::dense1D<unsigned, 8>&,
                              std::size_t);
using file_reader = int (*)(char const*, qv7::dense2D<double>&, qv7::dense2D<unsigned>&, qv7::dense1D<unsigned, 8>&,
                            qv7::dense1D<int, 8>&, qv7::dense1D<unsigned, 8>&);

inline grouped_read read_text(stream_reader read, std::string const& text,
                              std::size_t max_ID = qv7::tessarium::__max_node_ID)
{
    grouped_read r;
    std::istringstream in(text);
    r.result = read(in, r.pos, r.connectM, r.indices, r.FEs, r.per_element, max_ID);
    return r;
}

inline grouped_read read_path(file_reader read, std::string const& path)
{
    grouped_read r;
    r.result = read(path.c_str(), r.pos, r.connectM, r.indices, r.FEs, r.per_element);
    return r;
}

// ---- allocation failures ----

// Runs `call` with the library's allocator failing after 0, 1, 2, ... successes until it returns
// 0, expecting -199 from every failed run; returns the number of failed runs.
template <class Call>
std::size_t failed_runs_before_success(Call call)
{
    for (std::size_t successes = 0;; ++successes) {
        int code;
        {
            test_alloc::failing_scope guard(successes);
            code = call();
        }
        if (code == 0) return successes;
        EXPECT_EQ(code, -199) << "after " << successes << " allocations";
        if (code != -199) return successes;
    }
}

}  // namespace exchange_test
