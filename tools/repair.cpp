// repair: merge close nodes, drop degenerate elements and unused nodes.
#include "tool.h"

#include "tessarium/repair.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace tool {

using namespace qv7;
using namespace qv7::tessarium;

// The diagonal of the bounding box, the scale of a relative tolerance.
double diagonal(mesh const& m)
{
    double lo[3], hi[3];
    if (!bounding_box(m, lo, hi)) return 0.0;
    return std::sqrt((hi[0] - lo[0]) * (hi[0] - lo[0]) + (hi[1] - lo[1]) * (hi[1] - lo[1]) +
                     (hi[2] - lo[2]) * (hi[2] - lo[2]));
}

void add_repair(CLI::App& app, runner& run)
{
    struct options {
        std::string in, out;
        double tol = -1.0, rel_tol = 1e-6;
    };
    auto o = std::make_shared<options>();
    CLI::App* c = app.add_subcommand(
        "repair", "Merge coincident nodes, remove degenerate elements and unused nodes, and say what changed");
    c->add_option("IN", o->in, "Mesh file to read")->required();
    c->add_option("OUT", o->out, "Mesh file to write")->required();
    CLI::Option* tol =
        c->add_option("--tol", o->tol, "Merge nodes closer than this distance")->check(CLI::NonNegativeNumber);
    c->add_option("--rel-tol", o->rel_tol, "Merge distance relative to the bounding-box diagonal (default 1e-6)")
        ->check(CLI::NonNegativeNumber)
        ->excludes(tol);
    c->footer("Example: tessarium repair --tol 1e-4 scan.stl scan_fixed.stl\n");
    c->callback([&run, o] {
        run = [o]() -> int {
            mesh m;
            if (int code = load(o->in, m)) return code;
            double tol = o->tol >= 0.0 ? o->tol : o->rel_tol * diagonal(m);
            int merged, degenerate = 0;
            long unused;
            {
                progress p("merging nodes");
                std::vector<dense2D<unsigned>> connects;
                for (element_block const& b : m.blocks) connects.push_back(b.connect);
                merged = merge(m.pos, connects.data(), connects.data() + connects.size(), tol, 0);
                if (merged < 0) return fail(o->in + ": not enough memory to merge the nodes");
                for (std::size_t i = 0; i < connects.size(); ++i) m.blocks[i].connect = connects[i];
            }
            {
                progress p("removing degenerate elements");
                std::vector<char> keep;
                keep.reserve(m.nbr_elements());
                for (element_block const& b : m.blocks) {
                    dense2D<unsigned> connect;
                    dense1D<unsigned, 8> new_of_old;
                    if (!connect.copy(b.connect) || remove_degenerated(connect, new_of_old, false) < 0)
                        return fail(o->in + ": not enough memory to find the degenerate elements");
                    for (std::size_t e = 0; e < b.connect.cols(); ++e) keep.push_back(new_of_old[e] != NONE_ID);
                }
                degenerate = static_cast<int>(std::count(keep.begin(), keep.end(), 0));
                if (degenerate != 0) keep_elements(m, keep);
                unused = drop_unused_nodes(m);
                if (unused < 0) return fail(o->in + ": not enough memory to drop the unused nodes");
            }
            std::printf(
                "merged %d nodes (tolerance %s), removed %d degenerate elements and %ld unused nodes: "
                "%zu nodes, %zu elements\n",
                merged, number(tol).c_str(), degenerate, unused, m.nbr_nodes(), m.nbr_elements());
            return save(o->out, m);
        };
    });
}

}  // namespace tool
