// STL triangles, text with full-precision vertices or binary.
#include "mesh_io/text_output.h"

#include <cmath>
#include <cstdint>
#include <cstring>

namespace qv7 {
namespace tessarium {
namespace {

bool triangles_only(element_type type)
{
    return type == ET_FACE_T3;
}

struct point {
    double x[3];
};

point corner(dense2D<double> const& pos, unsigned node)
{
    double const* p = pos.col(node);
    return {{p[0], p[1], pos.rows() == 3 ? p[2] : 0.0}};
}

// The unit normal of a triangle; zero for a degenerate one.
point unit_normal(point const& a, point const& b, point const& c)
{
    double u[3], v[3];
    for (int i = 0; i < 3; ++i) u[i] = b.x[i] - a.x[i], v[i] = c.x[i] - a.x[i];
    point n = {{u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]}};
    double length = std::sqrt(n.x[0] * n.x[0] + n.x[1] * n.x[1] + n.x[2] * n.x[2]);
    if (length > 0)
        for (double& x : n.x) x /= length;
    return n;
}

void put_floats(__text_sink& out, point const& p)
{
    for (double x : p.x) {
        float f = static_cast<float>(x);
        char bytes[4];
        std::memcpy(bytes, &f, 4);
        out.text(bytes, 4);
    }
}

void put_text(__text_sink& out, char const* label, point const& p)
{
    out.text(label).shortest(p.x[0]).put(' ').shortest(p.x[1]).put(' ').shortest(p.x[2]).put('\n');
}

}  // namespace

int __write_STL(__output_files& files, std::string const& path, mesh const& m, io_options const& options, io_report& r)
{
    __count_written(r, m, triangles_only);
    if (r.elements > 0xFFFFFFFFu) return __fail(r, io_bad_mesh, path, "more triangles than binary STL can count");
    __pass_over_fields(r, m);
    __pass_over_numbers(r, m);
    std::FILE* stream = files.open(path, r);
    if (!stream) return r.code;
    __text_sink out(stream);
    if (options.binary) {
        char header[80] = "binary STL written by tessarium";
        out.text(header, sizeof header);
        std::uint32_t count = static_cast<std::uint32_t>(r.elements);
        char bytes[4];
        std::memcpy(bytes, &count, 4);
        out.text(bytes, 4);
    } else {
        out.text("solid tessarium\n");
    }
    for (element_block const& b : m.blocks) {
        if (b.type != ET_FACE_T3) continue;
        for (std::size_t e = 0; e < b.connect.cols(); ++e) {
            unsigned const* nodes = b.connect.col(e);
            point a = corner(m.pos, nodes[0]), p = corner(m.pos, nodes[1]), c = corner(m.pos, nodes[2]);
            point n = unit_normal(a, p, c);
            if (options.binary) {
                put_floats(out, n), put_floats(out, a), put_floats(out, p), put_floats(out, c);
                out.put(0).put(0);
                continue;
            }
            put_text(out, "facet normal ", n);
            out.text(" outer loop\n");
            put_text(out, "  vertex ", a), put_text(out, "  vertex ", p), put_text(out, "  vertex ", c);
            out.text(" endloop\nendfacet\n");
        }
    }
    if (!options.binary) out.text("endsolid tessarium\n");
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
