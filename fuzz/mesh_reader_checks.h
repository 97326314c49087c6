// What read_mesh must leave behind, whatever the file: a message naming the file and an empty
// mesh on failure, elements on existing nodes on success; a breach aborts.
#pragma once

#include "file_input.h"
#include "reader_checks.h"
#include "tessarium/element_type.h"
#include "tessarium/mesh.h"

inline void read_mesh_and_check(std::uint8_t const* data, std::size_t size, char const* suffix)
{
    using namespace qv7::tessarium;
    char const* path = input_file(data, size, suffix);
    mesh m;
    io_report r = read_mesh(path, m);
    if (!r) {
        require(m.empty() && r.message.rfind(std::string(path) + ": ", 0) == 0);
        return;
    }
    require(m.pos.empty() || m.pos.rows() == 2 || m.pos.rows() == 3);
    require(m.node_IDs.empty() || m.node_IDs.size() == m.nbr_nodes());
    for (element_block const& b : m.blocks) {
        require(b.references.empty() || b.references.size() == b.connect.cols());
        require(check_IDs(b.connect, b.type, static_cast<unsigned>(m.nbr_nodes())));
    }
}
