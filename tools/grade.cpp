// grade: bound how fast a size map may change along the edges of a mesh.
#include "tool.h"

#include "tessarium/gradation.h"

#include <memory>
#include <set>

namespace tool {

using namespace qv7;
using namespace qv7::tessarium;

namespace {

// The one scalar field of a Medit solution over the nodes of m; "" or what was wrong.
std::string read_sizes(std::string const& path, mesh& m, dense1D<double, 8>& sizes)
{
    io_report r = read_fields(path, m);
    if (!r) return r.message;
    if (m.node_fields.size() != 1 || m.node_fields[0].values.rows() != 1)
        return path + ": the size map must be one scalar per vertex";
    if (!sizes.resize(m.nbr_nodes())) return "not enough memory for the sizes";
    for (std::size_t j = 0; j < sizes.size(); ++j)
        if (!((sizes[j] = m.node_fields[0].values(0, j)) > 0.0))
            return path + ": size " + std::to_string(j + 1) + " is not a positive number";
    return "";
}

}  // namespace

void add_grade(CLI::App& app, runner& run)
{
    struct options {
        std::string mesh, sol, out;
        double bound = 0.0;
        std::vector<unsigned> frozen;
    };
    auto o = std::make_shared<options>();
    CLI::App* c = app.add_subcommand("grade", "Bound the gradation (H-shock) of a size map over the mesh edges");
    c->add_option("MESH", o->mesh, "Mesh file to read")->required();
    c->add_option("SOL", o->sol, "Medit solution file (.sol or .solb): one size per node")->required();
    c->add_option("OUT", o->out, "Medit solution file to write (.sol)")->required();
    c->add_option("--bound", o->bound, "Largest H-shock allowed on an edge")->required()->check(CLI::NonNegativeNumber);
    c->add_option("--frozen-refs", o->frozen, "References whose elements' nodes keep their sizes");
    c->footer("Example: tessarium grade --bound 0.3 --frozen-refs 2 part.bdf part.sol graded.sol\n");
    c->callback([&run, o] {
        run = [o]() -> int {
            mesh m;
            if (int code = load(o->mesh, m)) return code;
            dense1D<double, 8> sizes;
            m.node_fields.clear();
            std::string wrong = read_sizes(o->sol, m, sizes);
            if (!wrong.empty()) return fail(wrong);
            dense2D<unsigned> connect;
            element_type type;
            if (!top_elements(m, connect, type)) return fail(o->mesh + ": no faces or solids to grade over");
            std::set<unsigned> refs(o->frozen.begin(), o->frozen.end());
            std::vector<char> frozen(m.nbr_nodes(), 0);
            for (element_block const& b : m.blocks)
                for (std::size_t e = 0; e < b.references.size(); ++e)
                    if (refs.count(b.references[e]))
                        for (std::size_t i = 0; i < b.connect.rows(); ++i) frozen[b.connect(i, e)] = 1;
            dense1D<unsigned, 8> node_list;
            for (std::size_t j = 0; j < frozen.size(); ++j)
                if (frozen[j] && !node_list.push_back(static_cast<unsigned>(j))) return fail("not enough memory");
            int changed;
            {
                progress p("grading");
                changed = bound_metric_gradations(m.pos, connect, type, node_list, true, 0, o->bound, sizes);
            }
            if (changed < 0) return fail(o->mesh + ": the gradation failed (code " + std::to_string(changed) + ")");
            std::printf("%d of %zu sizes changed (%zu frozen)\n", changed, sizes.size(), node_list.size());
            mesh out;
            out.pos = m.pos;
            out.node_fields.push_back({"size", dense2D<double>()});
            if (!out.node_fields[0].values.resize(1, sizes.size())) return fail("not enough memory");
            std::copy(sizes.begin(), sizes.end(), out.node_fields[0].values.col(0));
            return save(o->out, out);
        };
    });
}

}  // namespace tool
