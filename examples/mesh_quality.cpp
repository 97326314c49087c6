// Judges the elements of a NASTRAN deck: the quality of each kind of element, the worst element,
// a histogram of all qualities and the count of inverted elements.
//
//   mesh_quality [deck.nas]
//
// Without arguments it reads the sample shipped beside this source, examples/data/quality_block.nas.
// Quality is 1 for the ideal element of its kind, 0 for a flat one and negative for an inverted solid.
#include <tessarium/tessarium.h>

#include <cstdio>
#include <string>

using namespace qv7;

namespace {

char const* kind_name(int type)
{
    switch (type) {
    case ET_EDGE2:
        return "edges";
    case ET_FACE_T3:
        return "triangles";
    case ET_FACE_Q4:
        return "quadrangles";
    case ET_TETRA4:
        return "tetrahedra";
    case ET_PYRAMID5:
        return "pyramids";
    case ET_WEDGE6:
        return "wedges";
    case ET_HEXA8:
        return "hexahedra";
    default:
        return "higher-order elements";
    }
}

}  // namespace

int main(int argc, char** argv)
{
    std::string input = argc > 1 ? argv[1] : MESH_QUALITY_SAMPLE;
    dense2D<double> pos;
    dense2D<unsigned> connectM;
    dense1D<unsigned, 8> indices, PIDs;
    dense1D<int, 8> FEs;
    int code = tessarium::NASTRAN_input(input.c_str(), pos, connectM, indices, FEs, PIDs);
    if (code < 0) {
        std::fprintf(stderr, "cannot read %s (code %d)\n", input.c_str(), code);
        return 1;
    }
    std::printf("%s: %zu nodes, %zu elements\n", input.c_str(), pos.cols(), connectM.cols());

    // The last edge lies past 1 so that ideal elements fall into the top bin.
    misc::histogram histogram({-1.0, 0.0, 0.25, 0.5, 0.75, 0.9, 1.0 + 1e-9});
    double worst = 1.0;
    unsigned worst_element = NONE_ID, inverted = 0;
    for (std::size_t g = 0; g < FEs.size(); ++g) {
        // A group is a run of one type; its columns are a view of the first nbr_nodes rows.
        element_type type = static_cast<element_type>(FEs[g]);
        dense2D<unsigned> group =
            connectM.submatrix(indices[g], indices[g + 1] - indices[g], tessarium::nbr_nodes(type));
        dense1D<double, 8> qualities;
        double q_min;
        unsigned e_min;
        if (tessarium::shape_qualities(pos, group, type, qualities) != 0 ||
            tessarium::min_quality(pos, group, type, q_min, e_min) != 0) {
            std::printf("  %zu %s: not measured\n", group.cols(), kind_name(type));
            continue;
        }
        std::printf("  %zu %s, lowest quality %.4f\n", group.cols(), kind_name(type), q_min);
        for (double q : qualities) {
            histogram.process(q);
            inverted += q < 0.0;
        }
        if (e_min != NONE_ID && q_min < worst) {
            worst = q_min;
            worst_element = indices[g] + e_min;
        }
    }

    if (worst_element == NONE_ID)
        std::printf("every element is ideal\n");
    else
        std::printf("worst: element %u of the deck (in card order), quality %.4f\n", worst_element + 1, worst);
    std::printf("quality histogram of %zu elements:\n", histogram.count());
    for (std::size_t b = 0; b < histogram.bin_count(); ++b)
        std::printf("  [%5.2f, %5.2f)  %zu\n", histogram.edges()[b], histogram.edges()[b + 1], histogram.bin(b));
    std::printf("inverted elements: %u\n", inverted);
    return 0;
}
