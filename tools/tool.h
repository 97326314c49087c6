// The parts every subcommand of the `tessarium` program shares: loading and saving with one
// clear line on failure, the progress line, and the mesh edits that keep node and element data
// in step.
#pragma once

#include "tessarium/mesh.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <functional>
#include <string>

namespace tool {

using qv7::tessarium::mesh;

enum exit_code : int { exit_ok = 0, exit_bad_input = 1, exit_usage = 2 };

// A phase line on stderr ("reading part.stl ... 1.2 s") when stderr is a terminal and not quiet.
class progress {
public:
    static bool quiet;
    explicit progress(std::string phase);
    ~progress();
    progress(progress const&) = delete;
    progress& operator=(progress const&) = delete;

private:
    std::string phase_;
    std::chrono::steady_clock::time_point start_;
    bool shown_;
};

// "tessarium: <what>" on stderr; returns exit_bad_input.
int fail(std::string const& what);

// Reads or writes with the report's message as the one line on failure. 0 or exit_bad_input.
int load(std::string const& path, mesh& m);
int save(std::string const& path, mesh const& m, qv7::tessarium::io_options const& options = {});

// The format named by the path's extension, "" when none fits.
std::string format_name(std::string const& path);

// Drops the nodes no element uses, renumbering elements and keeping node IDs and node fields of
// the others. The number of nodes dropped, or -199.
long drop_unused_nodes(mesh& m);

// Keeps the elements whose keep flag is set (one per element, in block order), with their
// references and element fields; removes emptied blocks.
void keep_elements(mesh& m, std::vector<char> const& keep);

// The elements of the highest dimension present (3 or 2) as one connectivity: a pure type when
// one block holds them all, else the padded mixed form. false when there are none.
bool top_elements(mesh const& m, qv7::dense2D<unsigned>& connect, qv7::element_type& type);

// Number formatting shared by the reports.
std::string number(double x);

// The subcommands: each adds itself to the program and sets `run` when chosen.
using runner = std::function<int()>;
void add_info(CLI::App& app, runner& run);
void add_convert(CLI::App& app, runner& run);
void add_skin(CLI::App& app, runner& run);
void add_repair(CLI::App& app, runner& run);
void add_quality(CLI::App& app, runner& run);
void add_transform(CLI::App& app, runner& run);
void add_grade(CLI::App& app, runner& run);

}  // namespace tool

namespace tool {

// Shape quality per element of the blocks of faces and solids (empty for other blocks), and their
// summary: inverted elements (negative quality) and a histogram, bin 0 below 0, bin k for
// [(k - 1) / 10, k / 10), the last one holding 1.
struct quality_summary {
    std::size_t measured = 0, inverted = 0;
    double min = 1.0, mean = 0.0;
    std::size_t worst_block = 0, worst_element = 0;
    std::size_t bins[11] = {};
};
int measure_quality(mesh const& m, std::vector<qv7::dense1D<double, 8>>& per_block);
quality_summary summarize(std::vector<qv7::dense1D<double, 8>> const& per_block);
char const* bin_label(std::size_t k);

// "tetrahedra" for ET_TETRA4.
char const* type_name(qv7::element_type type);

double diagonal(mesh const& m);

}  // namespace tool
