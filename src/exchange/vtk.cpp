#include "tessarium/vtk.h"

#include "exchange/groups.h"
#include "exchange/text_sink.h"

namespace qv7 {
namespace tessarium {
namespace {

constexpr unsigned poly_vertex = 2;

// The VTK cell of each element type and the number of its first nodes that make it; a cell type
// of 0 means there is none.
struct vtk_cell {
    unsigned type;
    unsigned nodes;
};

constexpr vtk_cell no_cell = {0, 0};
constexpr vtk_cell line = {3, 2};
constexpr vtk_cell triangle = {5, 3};
constexpr vtk_cell quad = {9, 4};
constexpr vtk_cell tetra = {10, 4};
constexpr vtk_cell pyramid = {14, 5};
constexpr vtk_cell wedge = {13, 6};
constexpr vtk_cell hexahedron = {12, 8};

constexpr vtk_cell vtk_cells[nbr_element_types] = {
    no_cell,     // ET_NONE
    no_cell,     // ET_NODE
    no_cell,     // ET_EDGE_MIX
    line,        // ET_EDGE2
    line,        // ET_EDGE3
    no_cell,     // ET_FACE_MIX
    triangle,    // ET_FACE_T3
    quad,        // ET_FACE_Q4
    triangle,    // ET_FACE_T6
    quad,        // ET_FACE_Q8
    quad,        // ET_FACE_Q9
    no_cell,     // ET_SOLID_MIX
    tetra,       // ET_TETRA4
    tetra,       // ET_TETRA10
    pyramid,     // ET_PYRAMID5
    no_cell,     // ET_PYRAMID13
    pyramid,     // ET_PYRAMID14
    wedge,       // ET_WEDGE6
    no_cell,     // ET_WEDGE15
    wedge,       // ET_WEDGE18
    hexahedron,  // ET_HEXA8
    hexahedron,  // ET_HEXA20
    hexahedron,  // ET_HEXA27
};

// Appends n values without growing: the caller has reserved the room.
unsigned* append(dense1D<unsigned, 8>& list, std::size_t n)
{
    std::size_t s = list.size();
    list.resize(s + n);
    return list.data() + s;
}

// Room for `more` further entries; false when it cannot be had.
bool reserve_more(dense1D<unsigned, 8>& list, std::size_t more)
{
    std::size_t s = list.size();
    bool ok = list.resize(s + more);
    list.resize(s);
    return ok;
}

void write_points(__text_sink& out, dense2D<double> const& pos)
{
    out.text("\nPOINTS ");
    out.integer(__text_sink::as_int(pos.cols()));
    out.text(" double\n");
    for (std::size_t j = 0; j < pos.cols(); ++j) {
        double const* x = pos.col(j);
        out.fixed(x[0]);
        out.put(' ');
        out.fixed(x[1]);
        out.put(' ');
        out.fixed(pos.rows() == 3 ? x[2] : 0.0);
        out.put('\n');
    }
}

// Walks the flat list cell by cell; a count that runs past the end is cut at the end.
void write_cells(__text_sink& out, unsigned nbr_cells, dense1D<unsigned, 8> const& cells)
{
    out.text("\nCELLS ");
    out.integer(__text_sink::as_int(nbr_cells));
    out.put(' ');
    out.integer(__text_sink::as_int(cells.size()));
    out.put('\n');
    unsigned const* p = cells.data();
    unsigned const* end = p + cells.size();
    while (p != end) {
        unsigned count = *p;
        out.integer(__text_sink::as_int(*p++));
        out.put(' ');
        for (unsigned k = 0; k < count && p != end; ++k) {
            out.integer(__text_sink::as_int(*p++));
            out.put(' ');
        }
        out.put('\n');
    }
}

void write_cell_types(__text_sink& out, dense1D<unsigned, 8> const& cell_types)
{
    out.text("\nCELL_TYPES ");
    out.integer(__text_sink::as_int(cell_types.size()));
    out.put('\n');
    for (unsigned type : cell_types) {
        out.integer(__text_sink::as_int(type));
        out.put('\n');
    }
}

}  // namespace

int vtk_convert(dense2D<unsigned> const& connectM, element_type FE, unsigned& nbr_cells, dense1D<unsigned, 8>& cells,
                dense1D<unsigned, 8>& cell_types)
{
    if (!check_IDs(connectM, FE, NONE_ID)) return -1;
    FE = __narrow(FE, connectM.rows());
    if (FE < ET_NONE || FE > ET_HEXA27 || vtk_cells[FE].type == 0) return -2;
    vtk_cell const cell = vtk_cells[FE];
    std::size_t R = connectM.rows(), C = connectM.cols();
    if (R < cell.nodes) return -1;

    std::size_t extra = R - cell.nodes;
    std::size_t per_element = extra ? 2 : 1;
    if (!reserve_more(cells, C * (R + per_element)) || !reserve_more(cell_types, C * per_element)) return -199;
    bool swap_last_two = FE == ET_TETRA4 || FE == ET_TETRA10;
    for (std::size_t j = 0; j < C; ++j) {
        unsigned const* nodes = connectM.col(j);
        *append(cell_types, 1) = cell.type;
        unsigned* out = append(cells, 1 + cell.nodes);
        out[0] = cell.nodes;
        std::copy(nodes, nodes + cell.nodes, out + 1);
        if (swap_last_two) std::swap(out[cell.nodes - 1], out[cell.nodes]);
        ++nbr_cells;
        if (extra == 0) continue;
        *append(cell_types, 1) = poly_vertex;
        out = append(cells, 1 + extra);
        out[0] = static_cast<unsigned>(extra);
        std::copy(nodes + cell.nodes, nodes + R, out + 1);
        ++nbr_cells;
    }
    return 0;
}

int vtk_output(std::FILE* stream, dense2D<double> const& pos, unsigned nbr_cells, dense1D<unsigned, 8> const& cells,
               dense1D<unsigned, 8> const& cell_types)
{
    if (!stream) return -1;
    if (pos.rows() != 2 && pos.rows() != 3) return -2;
    __text_sink out(stream);
    out.text("# vtk DataFile Version 2.0\nGenerated by QV7 Tessarium(R).\nASCII\nDATASET UNSTRUCTURED_GRID\n");
    write_points(out, pos);
    write_cells(out, nbr_cells, cells);
    write_cell_types(out, cell_types);
    return 0;
}

int vtk_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const* first,
               dense2D<unsigned> const* last, dense1D<int, 8> const& FEs)
{
    // Opened before anything is checked: a refusal leaves the file created, empty and open.
    std::FILE* file = std::fopen(file_name, "w");
    if (!file) return -1;
    if (pos.rows() != 2 && pos.rows() != 3) return -2;
    if (int code = __check_groups(first, last, FEs, static_cast<unsigned>(pos.cols()))) return code;

    __block_list list;
    unsigned nbr_cells = 0;
    dense1D<unsigned, 8> cells, cell_types;
    if (!__split_groups(first, last, FEs, list)) {
        std::fclose(file);
        return -199;
    }
    for (std::size_t b = 0; b < list.blocks.size(); ++b) {
        int code = vtk_convert(list.blocks[b], element_type(list.types[b]), nbr_cells, cells, cell_types);
        if (code == -199) std::fclose(file);
        if (code != 0) return code;
    }
    int result = vtk_output(file, pos, nbr_cells, cells, cell_types);
    std::fclose(file);
    return result;
}

int vtk_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM, element_type FE)
{
    return __with_groups(connectM, FE, [&](auto first, auto last, auto const& FEs) {
        return vtk_output(file_name, pos, first, last, FEs);
    });
}

int vtk_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM1,
               dense2D<unsigned> const& connectM2, element_type FE1, element_type FE2)
{
    return __with_groups(connectM1, connectM2, FE1, FE2, [&](auto first, auto last, auto const& FEs) {
        return vtk_output(file_name, pos, first, last, FEs);
    });
}

}  // namespace tessarium
}  // namespace qv7
