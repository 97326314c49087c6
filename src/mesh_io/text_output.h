// Pieces the portable text writers share.
#pragma once

#include "exchange/text_sink.h"
#include "mesh_io/cell_kinds.h"
#include "mesh_io/mesh_io.h"

namespace qv7 {
namespace tessarium {

// x, y and z of node j with `separator` between them; z is 0 for a 2-row pos.
inline void __put_point(__text_sink& out, dense2D<double> const& pos, std::size_t j, char separator)
{
    double const* p = pos.col(j);
    out.shortest(p[0]).put(separator).shortest(p[1]).put(separator).shortest(pos.rows() == 3 ? p[2] : 0.0);
}

// The number of node j in a file that numbers nodes: its ID, or j + 1.
inline unsigned __node_number(mesh const& m, std::size_t j)
{
    return m.node_IDs.empty() ? static_cast<unsigned>(j + 1) : m.node_IDs[j];
}

// The element's reference, or `otherwise` for a block without references.
inline unsigned __reference(element_block const& b, std::size_t e, unsigned otherwise)
{
    return b.references.empty() ? otherwise : b.references[e];
}

// The blocks a table has cells for, counted as written; the others as passed over.
template <__cell_kind const (&Table)[nbr_element_types]>
bool __in_table(element_type type)
{
    return Table[type].name != nullptr;
}

// Reports the references and node IDs a format does not keep as passed over.
inline void __pass_over_numbers(io_report& r, mesh const& m)
{
    for (element_block const& b : m.blocks) __pass_over(r, "references", b.references.size());
    __pass_over(r, "node IDs", m.node_IDs.size());
}

// Reports the fields a format does not keep as passed over.
inline void __pass_over_fields(io_report& r, std::vector<mesh_field> const& fields, char const* kind)
{
    for (mesh_field const& f : fields) __pass_over(r, std::string(kind) + " field " + f.name, 1);
}
inline void __pass_over_fields(io_report& r, mesh const& m)
{
    __pass_over_fields(r, m.node_fields, "node");
    __pass_over_fields(r, m.element_fields, "element");
}

}  // namespace tessarium
}  // namespace qv7
