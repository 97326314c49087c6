// Files, arrays, meshes and reader calls for the tests of the format readers and writers.
#pragma once

#include "exchange/node_columns.h"
#include "support/arrays.h"
#include "support/files.h"
#include "support/test_meshes.h"

#include <array>
#include <cstdio>
#include <map>
#include <sstream>
#include <string>

#include <sys/wait.h>

namespace exchange_test {

using namespace test_arrays;
using namespace test_files;
using test_meshes::cube_and_apex;
using test_meshes::line_of_nodes;
using test_meshes::mixed_faces;
using test_meshes::mixed_solids;
using test_meshes::one_element_per_type;
using test_meshes::points;
using test_meshes::typed_groups;

using P = std::vector<double>;

// Runs a script of tests/ (path from the source folder) with /usr/bin/python3 on a file, and
// gathers the "name count" lines it prints; false when the program the script needs is not
// installed (exit status 77) or there is no Python.
inline bool run_read_script(char const* script, char const* reader, std::string const& path,
                            std::map<std::string, long>& found)
{
    std::string command =
        std::string("/usr/bin/python3 ") + TESSARIUM_SOURCE_DIR + "/" + script + " " + reader + " '" + path + "' 2>&1";
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

// The former name of list, kept for tests written against it.
template <class E>
qv7::dense1D<E, 8> array(std::vector<E> const& entries)
{
    return list(entries);
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

using stream_reader = int (*)(std::istream&, qv7::dense2D<double>&, qv7::dense2D<unsigned>&, qv7::dense1D<unsigned, 8>&,
                              qv7::dense1D<int, 8>&, qv7::dense1D<unsigned, 8>&, std::size_t);
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

}  // namespace exchange_test
