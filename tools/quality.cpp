// quality: shape quality of every face and solid, a histogram and the worst elements.
#include "tool.h"

#include "tessarium/quality.h"

#include <algorithm>
#include <memory>

namespace tool {

using namespace qv7;
using namespace qv7::tessarium;

char const* type_name(element_type type)
{
    static char const* const names[nbr_element_types] = {"none",
                                                         "nodes",
                                                         "mixed edges",
                                                         "edges",
                                                         "3-node edges",
                                                         "mixed faces",
                                                         "triangles",
                                                         "quadrangles",
                                                         "6-node triangles",
                                                         "8-node quadrangles",
                                                         "9-node quadrangles",
                                                         "mixed solids",
                                                         "tetrahedra",
                                                         "10-node tetrahedra",
                                                         "pyramids",
                                                         "13-node pyramids",
                                                         "14-node pyramids",
                                                         "wedges",
                                                         "15-node wedges",
                                                         "18-node wedges",
                                                         "hexahedra",
                                                         "20-node hexahedra",
                                                         "27-node hexahedra"};
    return type >= 0 && type < static_cast<int>(nbr_element_types) ? names[type] : "unknown";
}

int measure_quality(mesh const& m, std::vector<dense1D<double, 8>>& per_block)
{
    progress p("measuring quality");
    per_block.assign(m.blocks.size(), dense1D<double, 8>());
    for (std::size_t i = 0; i < m.blocks.size(); ++i) {
        element_block const& b = m.blocks[i];
        if (element_dim(b.type) < 2 || b.connect.cols() == 0) continue;
        if (shape_qualities(m.pos, b.connect, b.type, per_block[i]) == -199) return -199;
    }
    return 0;
}

char const* bin_label(std::size_t k)
{
    static char const* const labels[11] = {"<0",      "0-0.1",   "0.1-0.2", "0.2-0.3", "0.3-0.4", "0.4-0.5",
                                           "0.5-0.6", "0.6-0.7", "0.7-0.8", "0.8-0.9", "0.9-1"};
    return labels[k];
}

quality_summary summarize(std::vector<dense1D<double, 8>> const& per_block)
{
    quality_summary s;
    double sum = 0.0;
    for (std::size_t i = 0; i < per_block.size(); ++i)
        for (std::size_t e = 0; e < per_block[i].size(); ++e) {
            double q = per_block[i][e];
            ++s.measured;
            sum += q;
            if (q < s.min || s.measured == 1) {
                s.min = q;
                s.worst_block = i;
                s.worst_element = e;
            }
            s.inverted += q < 0.0;
            std::size_t k = q < 0.0 ? 0 : std::min<std::size_t>(10, 1 + static_cast<std::size_t>(q * 10.0));
            ++s.bins[k];
        }
    if (s.measured != 0) s.mean = sum / static_cast<double>(s.measured);
    return s;
}

// The element number over all blocks, from 1, as files count them.
static std::size_t element_number(mesh const& m, std::size_t block, std::size_t e)
{
    for (std::size_t i = 0; i < block; ++i) e += m.blocks[i].connect.cols();
    return e + 1;
}

void add_quality(CLI::App& app, runner& run)
{
    struct options {
        std::string in;
        std::size_t worst = 10;
    };
    auto o = std::make_shared<options>();
    CLI::App* c = app.add_subcommand("quality", "Shape quality of faces and solids: histogram and worst elements");
    c->add_option("IN", o->in, "Mesh file to read")->required();
    c->add_option("--worst", o->worst, "How many of the worst elements to list (default 10)");
    c->footer(
        "Quality is 1 for the ideal element, 0 for a flat one, negative for an inverted one.\n"
        "Example: tessarium quality --worst 5 engine.bdf\n");
    c->callback([&run, o] {
        run = [o]() -> int {
            mesh m;
            if (int code = load(o->in, m)) return code;
            std::vector<dense1D<double, 8>> q;
            if (measure_quality(m, q) < 0) return fail(o->in + ": not enough memory to measure the quality");
            quality_summary s = summarize(q);
            if (s.measured == 0) return fail(o->in + ": no faces or solids to measure");
            std::printf("%zu elements measured: min %s, mean %s, %zu inverted\n", s.measured, number(s.min).c_str(),
                        number(s.mean).c_str(), s.inverted);
            for (std::size_t k = 0; k < 11; ++k)
                if (s.bins[k] != 0) std::printf("  %-8s %zu\n", bin_label(k), s.bins[k]);
            struct worst {
                double q;
                std::size_t block, element;
            };
            std::vector<worst> all;
            all.reserve(s.measured);
            for (std::size_t i = 0; i < q.size(); ++i)
                for (std::size_t e = 0; e < q[i].size(); ++e) all.push_back({q[i][e], i, e});
            std::size_t n = std::min(o->worst, all.size());
            std::partial_sort(all.begin(), all.begin() + n, all.end(), [](worst const& a, worst const& b) {
                return a.q < b.q ||
                       (a.q == b.q && (a.block < b.block || (a.block == b.block && a.element < b.element)));
            });
            if (n != 0) std::printf("worst elements (number in the file, type, quality):\n");
            for (std::size_t k = 0; k < n; ++k)
                std::printf("  %zu %s %s\n", element_number(m, all[k].block, all[k].element),
                            type_name(m.blocks[all[k].block].type), number(all[k].q).c_str());
            return exit_ok;
        };
    });
}

}  // namespace tool
