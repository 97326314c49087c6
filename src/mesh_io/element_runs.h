// Elements gathered by type as a reader finds them, each with the number of the file record it
// came from, and turned into the mesh's blocks in the order their types first appeared.
#pragma once

#include "mesh_io/mesh_io.h"

#include <algorithm>
#include <vector>

namespace qv7 {
namespace tessarium {

struct __element_run {
    element_type type;
    std::vector<unsigned> nodes;  // the library's local order
    std::vector<std::size_t> sources;
};

class __element_runs {
public:
    __element_runs() { std::fill(run_of_, run_of_ + nbr_element_types, -1); }

    // One element of record `source`, whose file position k holds point p[k], local node order[k].
    template <class Point>
    void add(element_type type, Point const* p, unsigned char const* order, std::size_t source)
    {
        __element_run& run = run_of(type);
        std::size_t count = counts_[type], first = run.nodes.size();
        run.nodes.resize(first + count);
        for (std::size_t k = 0; k < count; ++k) run.nodes[first + order[k]] = static_cast<unsigned>(p[k]);
        run.sources.push_back(source);
    }
    // n elements of records first_source, first_source + 1, ...: their nodes, in the local order,
    // are for the caller to write at the place returned.
    unsigned* append(element_type type, std::size_t n, std::size_t first_source)
    {
        __element_run& run = run_of(type);
        std::size_t first = run.nodes.size();
        run.nodes.resize(first + n * counts_[type]);
        for (std::size_t k = 0; k < n; ++k) run.sources.push_back(first_source + k);
        return run.nodes.data() + first;
    }
    // Room for n more elements of the type, when a file tells how many follow.
    void expect(element_type type, std::size_t n)
    {
        __element_run& run = run_of(type);
        run.nodes.reserve(run.nodes.size() + n * counts_[type]);
        run.sources.reserve(run.sources.size() + n);
    }

    // Appends one block per run to m; the runs keep their sources. False when memory runs out.
    bool to_blocks(mesh& m)
    {
        for (__element_run& run : runs) {
            element_block b;
            b.type = run.type;
            std::size_t count = nbr_nodes(run.type), n = run.sources.size();
            if (!b.connect.resize(count, n)) return false;
            for (std::size_t e = 0; e < n; ++e) std::copy_n(run.nodes.data() + e * count, count, b.connect.col(e));
            run.nodes = {};
            m.blocks.push_back(std::move(b));
        }
        return true;
    }

    std::vector<__element_run> runs;

private:
    __element_run& run_of(element_type type)
    {
        if (run_of_[type] < 0) {
            run_of_[type] = static_cast<int>(runs.size()), runs.push_back({type, {}, {}});
            counts_[type] = nbr_nodes(type);
        }
        return runs[static_cast<std::size_t>(run_of_[type])];
    }
    int run_of_[nbr_element_types];
    unsigned counts_[nbr_element_types] = {};
};

}  // namespace tessarium
}  // namespace qv7
