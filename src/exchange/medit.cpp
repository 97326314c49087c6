#include "tessarium/medit.h"

#include "exchange/groups.h"
#include "exchange/text_sink.h"
#include "tessarium/array_ops.h"

#include <cstdio>

namespace qv7 {
namespace tessarium {
namespace {

// The Medit entity of each element type, with the local nodes written for it; no keyword means
// the type has no entity and its elements are left out.
struct medit_entity {
    char const* keyword;
    unsigned nodes;
    unsigned char local[8];
};

constexpr medit_entity edges = {"Edges\n", 2, {0, 1}};
constexpr medit_entity triangles = {"Triangles\n", 3, {0, 1, 2}};
constexpr medit_entity quadrilaterals = {"Quadrilaterals\n", 4, {0, 1, 2, 3}};
constexpr medit_entity tetrahedra = {"Tetrahedra\n", 4, {0, 1, 2, 3}};
constexpr medit_entity pyramid_hexahedra = {"Hexahedra\n", 8, {0, 1, 2, 3, 4, 4, 4, 4}};
constexpr medit_entity wedge_hexahedra = {"Hexahedra\n", 8, {0, 1, 2, 2, 3, 4, 5, 5}};
constexpr medit_entity hexahedra = {"Hexahedra\n", 8, {0, 1, 2, 3, 4, 5, 6, 7}};
constexpr medit_entity no_entity = {nullptr, 0, {}};

constexpr medit_entity medit_entities[nbr_element_types] = {
    no_entity,          // ET_NONE
    no_entity,          // ET_NODE
    no_entity,          // ET_EDGE_MIX
    edges,              // ET_EDGE2
    edges,              // ET_EDGE3
    no_entity,          // ET_FACE_MIX
    triangles,          // ET_FACE_T3
    quadrilaterals,     // ET_FACE_Q4
    triangles,          // ET_FACE_T6
    quadrilaterals,     // ET_FACE_Q8
    quadrilaterals,     // ET_FACE_Q9
    no_entity,          // ET_SOLID_MIX
    tetrahedra,         // ET_TETRA4
    tetrahedra,         // ET_TETRA10
    pyramid_hexahedra,  // ET_PYRAMID5
    no_entity,          // ET_PYRAMID13
    pyramid_hexahedra,  // ET_PYRAMID14
    wedge_hexahedra,    // ET_WEDGE6
    no_entity,          // ET_WEDGE15
    wedge_hexahedra,    // ET_WEDGE18
    hexahedra,          // ET_HEXA8
    hexahedra,          // ET_HEXA20
    hexahedra,          // ET_HEXA27
};

// Medit writes its reals in this one form everywhere.
void real(__text_sink& out, double value)
{
    out.scientific(value, 6, true);
    out.put(' ');
}

void write_vertices(__text_sink& out, dense2D<double> const& pos)
{
    out.text("Vertices\n");
    out.integer(__text_sink::as_int(pos.cols()));
    out.put('\n');
    for (std::size_t j = 0; j < pos.cols(); ++j) {
        double const* x = pos.col(j);
        for (std::size_t r = 0; r < pos.rows(); ++r) real(out, x[r]);
        out.text("0 \n");
    }
    out.put('\n');
}

void write_elements(__text_sink& out, dense2D<unsigned> const& block, medit_entity const& entity, unsigned reference)
{
    int ref = __text_sink::as_int(reference);
    for (std::size_t j = 0; j < block.cols(); ++j) {
        unsigned const* nodes = block.col(j);
        for (unsigned k = 0; k < entity.nodes; ++k) {
            out.integer(__text_sink::as_int(nodes[entity.local[k]] + 1ul));
            out.put(' ');
        }
        out.integer(ref);
        out.text(" \n");
    }
}

// One section per element type that has an entity and elements, in type order.
void write_sections(__text_sink& out, __block_list const& list)
{
    for (unsigned t = 0; t < nbr_element_types; ++t) {
        medit_entity const& entity = medit_entities[t];
        if (!entity.keyword) continue;
        std::size_t count = 0;
        for (std::size_t b = 0; b < list.blocks.size(); ++b)
            if (list.types[b] == int(t)) count += list.blocks[b].cols();
        if (count == 0) continue;
        out.text(entity.keyword);
        out.integer(__text_sink::as_int(count));
        out.put('\n');
        for (std::size_t b = 0; b < list.blocks.size(); ++b)
            if (list.types[b] == int(t)) write_elements(out, list.blocks[b], entity, list.references[b]);
        out.put('\n');
    }
}

void write_solution_header(__text_sink& out, unsigned dim, std::size_t components, std::size_t entities)
{
    out.integer(__text_sink::as_int(dim));
    out.put(' ');
    out.integer(__text_sink::as_int(components));
    out.put(' ');
    out.integer(__text_sink::as_int(entities));
    out.text(" 2\n");
}

// One line per column.
void write_columns(__text_sink& out, dense2D<double> const& values)
{
    for (std::size_t j = 0; j < values.cols(); ++j) {
        double const* v = values.col(j);
        for (std::size_t r = 0; r < values.rows(); ++r) real(out, v[r]);
        out.put('\n');
    }
}

}  // namespace

int medit_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const* first,
                 dense2D<unsigned> const* last, dense1D<int, 8> const& FEs)
{
    std::size_t dim = pos.rows();
    if (dim < 1 || dim > 3) return -2;
    if (int code = __check_groups(first, last, FEs, static_cast<unsigned>(pos.cols()))) return code;
    std::FILE* file = std::fopen(file_name, "w");
    if (!file) return -1;
    int result = 0;
    {
        __text_sink out(file);
        out.text("MeshVersionFormatted 1\nDimension ");
        out.integer(__text_sink::as_int(dim));
        out.text("\n# Mesh format for MEDIT, generated by QV7 Tessarium(R).\n\n");
        write_vertices(out, pos);
        __block_list list;
        if (__split_groups(first, last, FEs, list)) {
            write_sections(out, list);
            out.text("End\n");
        } else {
            result = -199;
        }
    }
    std::fclose(file);
    return result;
}

int medit_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM,
                 element_type FE)
{
    return __with_groups(connectM, FE, [&](auto first, auto last, auto const& FEs) {
        return medit_output(file_name, pos, first, last, FEs);
    });
}

int medit_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM1,
                 dense2D<unsigned> const& connectM2, element_type FE1, element_type FE2)
{
    return __with_groups(connectM1, connectM2, FE1, FE2, [&](auto first, auto last, auto const& FEs) {
        return medit_output(file_name, pos, first, last, FEs);
    });
}

int medit_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM,
                 element_type FE, dense1D<unsigned, 8> const& IDs)
{
    if (connectM.empty()) return 0;
    if (IDs.size() != connectM.cols()) return -5;
    unsigned largest = 0;
    for (unsigned id : IDs)
        if (id != NONE_ID && id > largest) largest = id;
    std::size_t count = std::size_t(largest) + 1;
    dense1D<dense2D<unsigned>, 8> groups(count);
    dense1D<int, 8> FEs(count, FE);
    if (groups.size() != count || FEs.size() != count) return -6;
    for (std::size_t j = 0; j < IDs.size(); ++j)
        if (IDs[j] != NONE_ID && !matmat::push_back(connectM, j, groups[IDs[j]])) return -199;
    return medit_output(file_name, pos, groups.begin(), groups.end(), FEs);
}

int medit_scalar(char const* file_name, unsigned dim, dense1D<double, 8> const& values)
{
    std::FILE* file = std::fopen(file_name, "w");
    if (!file) return -1;
    {
        __text_sink out(file);
        write_solution_header(out, dim, 1, values.size());
        for (std::size_t i = 0; i < values.size(); ++i) {
            real(out, values[i]);
            if (i % 8 == 7) out.put('\n');
        }
        out.put('\n');
    }
    std::fclose(file);
    return 0;
}

int medit_vector(char const* file_name, unsigned dim, dense2D<double> const& values)
{
    std::FILE* file = std::fopen(file_name, "w");
    if (!file) return -1;
    {
        __text_sink out(file);
        write_solution_header(out, dim, values.rows(), values.cols());
        write_columns(out, values);
    }
    std::fclose(file);
    return 0;
}

int medit_tensor(char const* file_name, dense2D<double> const& values)
{
    std::FILE* file = std::fopen(file_name, "w");
    if (!file) return -1;
    std::size_t rows = values.rows();
    if (rows != 3 && rows != 6) return -2;  // the file stays created, empty and open
    {
        __text_sink out(file);
        write_solution_header(out, rows == 6 ? 3 : 2, rows, values.cols());
        write_columns(out, values);
    }
    std::fclose(file);
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
