// convert and skin: one file into another, whole or as its free boundary.
#include "tool.h"

#include "tessarium/connectivity.h"

#include <memory>

namespace tool {

using namespace qv7;
using namespace qv7::tessarium;

// Replaces the elements of m by the free boundary of its highest-dimension elements.
static int to_skin(mesh& m, std::string const& path)
{
    progress p("finding the skin");
    dense2D<unsigned> connect, neighbors, boundaries;
    element_type type;
    if (!top_elements(m, connect, type)) return fail(path + ": no faces or solids to take the skin of");
    if (get_neighbors(connect, type, false, neighbors) < 0 ||
        get_mesh_boundaries(connect, neighbors, type, boundaries) < 0)
        return fail(path + ": not enough memory for the skin");
    element_type skin_type = element_dim(type) == 3 ? ET_FACE_MIX : ET_EDGE2;
    if (skin_type == ET_FACE_MIX && boundaries.rows() == 3) skin_type = ET_FACE_T3;
    if (skin_type == ET_FACE_MIX && boundaries.rows() == 4) {
        // Quadrangles and triangles share the padded form; split it into pure blocks.
        m.blocks.clear();
        m.element_fields.clear();
        if (boundaries.cols() != 0 && add_mixed(m, boundaries, ET_FACE_MIX) < 0)
            return fail(path + ": not enough memory for the skin");
    } else {
        element_block b;
        b.type = skin_type;
        b.connect = boundaries;
        m.blocks.assign(1, b);
        m.element_fields.clear();
        if (boundaries.cols() == 0) m.blocks.clear();
    }
    if (drop_unused_nodes(m) < 0) return fail(path + ": not enough memory for the skin");
    return exit_ok;
}

void add_convert(CLI::App& app, runner& run)
{
    struct options {
        std::string in, out;
        bool faithful = false, skin = false, binary = false;
    };
    auto o = std::make_shared<options>();
    CLI::App* c = app.add_subcommand("convert", "Write a mesh file in another format, chosen by extension");
    c->add_option("IN", o->in, "Mesh file to read")->required();
    c->add_option("OUT", o->out, "Mesh file to write")->required();
    c->add_flag("--faithful", o->faithful, "Write with the format functions' exact bytes (default: portable)");
    c->add_flag("--skin", o->skin, "Write only the free boundary (faces of solids, edges of surfaces)");
    c->add_flag("--binary", o->binary, "Binary STL or gmsh");
    c->footer("Example: tessarium convert bracket.bdf bracket.vtk\n");
    c->callback([&run, o] {
        run = [o]() -> int {
            mesh m;
            if (int code = load(o->in, m)) return code;
            if (o->skin)
                if (int code = to_skin(m, o->in)) return code;
            io_options options;
            options.faithful = o->faithful;
            options.binary = o->binary;
            return save(o->out, m, options);
        };
    });
}

void add_skin(CLI::App& app, runner& run)
{
    struct options {
        std::string in, out;
    };
    auto o = std::make_shared<options>();
    CLI::App* c = app.add_subcommand("skin", "Write the free boundary of a mesh: faces of solids, edges of surfaces");
    c->add_option("IN", o->in, "Mesh file to read")->required();
    c->add_option("OUT", o->out, "Mesh file to write")->required();
    c->footer("Example: tessarium skin engine.bdf engine_skin.stl\n");
    c->callback([&run, o] {
        run = [o]() -> int {
            mesh m;
            if (int code = load(o->in, m)) return code;
            if (int code = to_skin(m, o->in)) return code;
            std::printf("%zu boundary elements, %zu nodes\n", m.nbr_elements(), m.nbr_nodes());
            return save(o->out, m);
        };
    });
}

}  // namespace tool
