#include "mesh_io/mesh_io.h"

#include <cctype>

namespace qv7 {
namespace tessarium {
namespace {

bool is_pure(element_type type) noexcept
{
    return type > ET_NONE && type <= ET_HEXA27 && type != ET_EDGE_MIX && type != ET_FACE_MIX && type != ET_SOLID_MIX;
}

int check_fields(std::string const& path, std::vector<mesh_field> const& fields, std::size_t count, char const* per,
                 io_report& r)
{
    for (mesh_field const& f : fields) {
        bool plain = !f.name.empty();
        for (char c : f.name) plain = plain && std::isgraph(static_cast<unsigned char>(c));
        if (!plain) return __fail(r, io_bad_mesh, path, "field name \"" + f.name + "\" is empty or holds blanks");
        if (f.values.cols() != count || f.values.rows() == 0)
            return __fail(r, io_bad_mesh, path,
                          "field \"" + f.name + "\" has " + std::to_string(f.values.cols()) + " columns for " +
                              std::to_string(count) + " " + per);
    }
    return 0;
}

}  // namespace

int __check_mesh(std::string const& path, mesh const& m, io_report& r)
{
    if (m.pos.cols() != 0 && m.pos.rows() != 2 && m.pos.rows() != 3)
        return __fail(r, io_bad_mesh, path, "pos has " + std::to_string(m.pos.rows()) + " rows; 2 or 3 are needed");
    if (!m.node_IDs.empty() && m.node_IDs.size() != m.nbr_nodes())
        return __fail(r, io_bad_mesh, path,
                      std::to_string(m.node_IDs.size()) + " node IDs for " + std::to_string(m.nbr_nodes()) + " nodes");
    for (std::size_t i = 0; i < m.node_IDs.size(); ++i)
        if (m.node_IDs[i] == 0) return __fail(r, io_bad_mesh, path, __ordinal("node", i) + " has the ID 0");
    for (std::size_t k = 0; k < m.blocks.size(); ++k) {
        element_block const& b = m.blocks[k];
        std::string block = __ordinal("block", k);
        if (!is_pure(b.type))
            return __fail(r, io_bad_mesh, path,
                          block + ": type " + std::to_string(b.type) +
                              " is not one element kind (split mixed arrays with add_mixed)");
        if (!b.connect.empty() && b.connect.rows() != nbr_nodes(b.type))
            return __fail(r, io_bad_mesh, path,
                          block + ": " + std::to_string(b.connect.rows()) + " rows for " + __type_name(b.type) +
                              ", which has " + std::to_string(nbr_nodes(b.type)) + " nodes");
        if (!b.references.empty() && b.references.size() != b.connect.cols())
            return __fail(r, io_bad_mesh, path,
                          block + ": " + std::to_string(b.references.size()) + " references for " +
                              std::to_string(b.connect.cols()) + " elements");
    }
    int code = __check_elements(path, m, r, "element", io_bad_mesh);
    if (code < 0) return code;
    code = check_fields(path, m.node_fields, m.nbr_nodes(), "nodes", r);
    if (code < 0) return code;
    return check_fields(path, m.element_fields, m.nbr_elements(), "elements", r);
}

int __check_elements(std::string const& path, mesh const& m, io_report& r, char const* noun, int code)
{
    std::size_t n = m.nbr_nodes(), e = 0;
    for (element_block const& b : m.blocks) {
        if (check_IDs(b.connect, b.type, static_cast<unsigned>(n))) {
            e += b.connect.cols();
            continue;
        }
        for (std::size_t j = 0; j < b.connect.cols(); ++j, ++e)
            for (std::size_t i = 0; i < b.connect.rows(); ++i)
                if (b.connect(i, j) >= n) {
                    std::string node = b.connect(i, j) == NONE_ID ? "no node" : __ordinal("node", b.connect(i, j));
                    return __fail(r, code, path,
                                  __ordinal(noun, e) + " (" + __type_name(b.type) + ") refers to " + node +
                                      ", but there are " + std::to_string(n) + " nodes");
                }
    }
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
