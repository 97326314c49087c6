// FEMAP neutral files: the blocks are found here, between their "-1" lines, and the node and
// element blocks are read by the format function's worker, one block at a time.
#include "exchange/femap_input.h"
#include "exchange/femap_tables.h"
#include "exchange/node_columns.h"
#include "mesh_io/cell_kinds.h"
#include "mesh_io/file_text.h"
#include "mesh_io/mesh_io.h"

#include <cstdlib>
#include <sstream>

namespace qv7 {
namespace tessarium {
namespace {

std::string trimmed(std::string const& line)
{
    std::size_t a = line.find_first_not_of(" \t\r"), b = line.find_last_not_of(" \t\r");
    return a == std::string::npos ? std::string() : line.substr(a, b - a + 1);
}

// The text of blocks 403 and 404 behind their numbers; the other blocks, and lines between
// blocks, are passed over. False when the last block is not closed.
struct blocks_found {
    std::string nodes = "403\n", elements = "404\n";
    bool any = false;
};

bool split_blocks(std::string const& text, blocks_found& found, io_report& r)
{
    std::istringstream in(text);
    std::string line, block;
    bool inside = false, expect_number = false;
    while (std::getline(in, line)) {
        std::string word = trimmed(line);
        if (word == "-1") {
            expect_number = !inside;
            inside = false;
            continue;
        }
        if (expect_number && !word.empty()) {
            block = word, inside = true, expect_number = false, found.any = true;
            if (block != "403" && block != "404") __pass_over(r, "data block " + block, 1);
            continue;
        }
        if (!inside) {
            if (!word.empty()) __pass_over(r, "lines outside the data blocks", 1);
            continue;
        }
        if (block == "403") found.nodes += line + "\n";
        if (block == "404") found.elements += line + "\n";
    }
    return !inside;
}

}  // namespace

int __read_FEMAP(std::string const& path, mesh& m, io_report& r)
{
    blocks_found found;
    if (!split_blocks(__file_text(path), found, r) || !found.any)
        return __fail(r, io_malformed, path,
                      found.any ? "cut short: the last data block is not closed by a \"-1\" line"
                                : "not a FEMAP neutral file: no data block opened by a \"-1\" line");
    dense2D<unsigned> connectM;
    dense1D<unsigned, 8> indices, IDs;
    dense1D<int, 8> FEs;
    std::istringstream nodes(found.nodes);
    int code = __FEMAP_input(nodes, m.pos, connectM, indices, FEs, IDs);
    if (code == -102) return __fail(r, io_malformed, path, "data block 403: a node record with the ID 0");
    if (code < 0) return __fail(r, io_malformed, path, "data block 403: a node record with a negative ID");
    dense2D<double> unused;
    indices.resize(0), FEs.resize(0), IDs.resize(0);
    std::istringstream elements(found.elements);
    if (__FEMAP_input(elements, unused, connectM, indices, FEs, IDs) < 0)
        return __fail(r, io_no_memory, path, "not enough memory for the elements");
    // The type of each record, from its topology; records of other topologies are passed over.
    std::istringstream records(found.elements);
    std::string line;
    std::getline(records, line);
    std::size_t column = 0;
    for (std::size_t record = 1; std::getline(records, line); ++record) {
        std::vector<std::string> words;
        __get_words(line, words);
        for (int k = 0; k < 6; ++k) std::getline(records, line);
        unsigned topology = words.size() > 4 ? static_cast<unsigned>(std::atoi(words[4].c_str())) : 99;
        __femap_kind const* kind = __femap_kind_of_topology(topology);
        if (!kind || topology == 11 || !records) {
            __pass_over(r, "element records of topology " + std::to_string(static_cast<int>(topology)), 1);
            continue;
        }
        if (column >= connectM.cols()) break;
        if (m.blocks.empty() || m.blocks.back().type != kind->type) {
            element_block b;
            b.type = kind->type;
            m.blocks.push_back(b);
        }
        element_block& b = m.blocks.back();
        std::size_t rows = nbr_nodes(b.type), cols = b.connect.cols() + 1;
        if (!__reserve_columns(b.connect, rows, __power_of_two_ceil(cols)) || !b.connect.resize(rows, cols) ||
            !b.references.push_back(IDs[column]))
            return __fail(r, io_no_memory, path, "not enough memory for the elements");
        unsigned* element = b.connect.col(b.connect.cols() - 1);
        for (unsigned i = 0; i < rows; ++i) element[i] = connectM(b.type == ET_WEDGE6 ? __turned_wedge[i] : i, column);
        ++column;
    }
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
