// Builds a small mixed mesh in memory, validates its connectivities and reports what it found.
#include <tessarium/tessarium.h>

#include <cstdio>

using namespace qv7;

int main()
{
    // A unit cube of 8 nodes, split into a hexahedron and its 6 faces as mixed faces.
    dense2D<double> pos;
    pos.resize(3, 8);
    for (unsigned n = 0; n < 8; ++n) {
        pos(0, n) = n & 1;
        pos(1, n) = (n >> 1) & 1;
        pos(2, n) = (n >> 2) & 1;
    }
    dense2D<unsigned> hexa;
    hexa.resize(8, 1);
    unsigned const corners[8] = {0, 1, 3, 2, 4, 5, 7, 6};
    for (unsigned i = 0; i < 8; ++i) hexa(i, 0) = corners[i];

    // Two quadrangles and two triangles on the faces: triangles end with NONE_ID in row 3.
    unsigned const faces[4][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, NONE_ID}, {0, 5, 4, NONE_ID}};
    dense2D<unsigned> skin;
    for (auto const& f : faces) matvec::push_back(vector_fixed<unsigned, 4>{f[0], f[1], f[2], f[3]}, skin);

    unsigned nodes = static_cast<unsigned>(pos.cols());
    std::printf("tessarium %s\n", tessarium::version());
    std::printf("nodes: %u (%zu coordinates each)\n", nodes, pos.rows());
    std::printf("hexahedra: %zu, %s\n", hexa.cols(), tessarium::check_IDs(hexa, ET_HEXA8, nodes) ? "valid" : "INVALID");
    std::printf("mixed faces: %zu, %s\n", skin.cols(),
                tessarium::check_IDs(skin, ET_FACE_MIX, nodes) ? "valid" : "INVALID");

    // A face that names a node outside the mesh is refused, with or without its type.
    skin(2, 3) = nodes;
    std::printf("after corrupting a face: typed check %s, untyped check %s\n",
                tessarium::check_IDs(skin, ET_FACE_MIX, nodes) ? "valid" : "refused",
                tessarium::check_IDs(skin, nodes) ? "valid" : "refused");
    return 0;
}
