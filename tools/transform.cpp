// transform: scale, rotate, mirror and translate the nodes of a mesh.
#include "tool.h"

#include "tessarium/transforms.h"

#include <cmath>
#include <memory>
#include <utility>

namespace tool {

using namespace qv7;
using namespace qv7::tessarium;

namespace {

using vec3 = vector_fixed<double, 3>;

vec3 as_vec(std::vector<double> const& v)
{
    return vec3{v[0], v[1], v[2]};
}

// Reflects the nodes in the plane through c with normal n (not zero).
void reflect(dense2D<double>& pos, vec3 const& c, vec3 const& n)
{
    double nn = n[0] * n[0] + n[1] * n[1] + n[2] * n[2];
    for (std::size_t j = 0; j < pos.cols(); ++j) {
        double* p = pos.col(j);
        double d = 2.0 * ((p[0] - c[0]) * n[0] + (p[1] - c[1]) * n[1] + (p[2] - c[2]) * n[2]) / nn;
        for (int i = 0; i < 3; ++i) p[i] -= d * n[i];
    }
}

// Swaps of local nodes that turn a mirrored linear element right side out again.
std::vector<std::pair<int, int>> reorientation(element_type type)
{
    switch (type) {
    case ET_FACE_T3:
    case ET_TETRA4:
        return {{1, 2}};
    case ET_FACE_Q4:
    case ET_PYRAMID5:
        return {{1, 3}};
    case ET_WEDGE6:
        return {{1, 2}, {4, 5}};
    case ET_HEXA8:
        return {{1, 3}, {5, 7}};
    default:
        return {};
    }
}

}  // namespace

void add_transform(CLI::App& app, runner& run)
{
    struct options {
        std::string in, out;
        std::vector<double> translate, rotate, mirror, center{0.0, 0.0, 0.0};
        double scale = 1.0;
    };
    auto o = std::make_shared<options>();
    CLI::App* c =
        app.add_subcommand("transform", "Move a mesh: scale, then rotate, then mirror, then translate (each optional)");
    c->add_option("IN", o->in, "Mesh file to read")->required();
    c->add_option("OUT", o->out, "Mesh file to write")->required();
    c->add_option("--scale", o->scale, "Scale factor about the centre")->check(CLI::PositiveNumber);
    c->add_option("--rotate", o->rotate, "Axis x y z and angle in degrees, about the centre")->expected(4);
    c->add_option("--mirror", o->mirror, "Normal x y z of the mirror plane through the centre")->expected(3);
    c->add_option("--translate", o->translate, "Displacement x y z")->expected(3);
    c->add_option("--center", o->center, "Centre of scaling, rotation and mirror (default 0 0 0)")->expected(3);
    c->footer("Example: tessarium transform --scale 0.001 --rotate 0 0 1 90 part_mm.stl part_m.stl\n");
    c->callback([&run, o] {
        run = [o]() -> int {
            if (!o->rotate.empty() && o->rotate[0] == 0.0 && o->rotate[1] == 0.0 && o->rotate[2] == 0.0)
                return fail("--rotate: the axis is zero");
            if (!o->mirror.empty() && o->mirror[0] == 0.0 && o->mirror[1] == 0.0 && o->mirror[2] == 0.0)
                return fail("--mirror: the normal is zero");
            mesh m;
            if (int code = load(o->in, m)) return code;
            vec3 C = as_vec(o->center);
            // The 3D forms give a 2D mesh a z row of zeros.
            if (o->scale != 1.0) zoom(m.pos, C, o->scale);
            if (!o->rotate.empty()) {
                vec3 axis = as_vec(o->rotate);
                double length = std::sqrt(axis[0] * axis[0] + axis[1] * axis[1] + axis[2] * axis[2]);
                double angle = o->rotate[3] * std::acos(-1.0) / 180.0;
                rotate(m.pos, C, vec3{axis[0] * angle / length, axis[1] * angle / length, axis[2] * angle / length});
            }
            if (!o->mirror.empty()) {
                if (m.pos.rows() < 3 && !m.pos.resize(3, m.pos.cols(), 0.0)) return fail(o->in + ": not enough memory");
                reflect(m.pos, C, as_vec(o->mirror));
                for (element_block& b : m.blocks) {
                    auto swaps = reorientation(b.type);
                    if (swaps.empty() && element_dim(b.type) >= 2)
                        std::fprintf(stderr, "tessarium: %s are mirrored inside out\n", type_name(b.type));
                    for (std::size_t e = 0; e < b.connect.cols(); ++e)
                        for (auto const& s : swaps) std::swap(b.connect(s.first, e), b.connect(s.second, e));
                }
            }
            if (!o->translate.empty()) translate(m.pos, as_vec(o->translate));
            return save(o->out, m);
        };
    });
}

}  // namespace tool
