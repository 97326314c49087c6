// The write_mesh forms that hand the mesh to the format functions, whose bytes, limits and
// refusals are kept as they are.
#include "exchange/convenience_forms.h"
#include "exchange/femap_tables.h"
#include "exchange/nastran_tables.h"
#include "mesh_io/mesh_io.h"
#include "tessarium/ensight.h"
#include "tessarium/femap.h"
#include "tessarium/medit.h"
#include "tessarium/nastran.h"
#include "tessarium/stl.h"
#include "tessarium/vtk.h"
#include "tessarium/wavefront_obj.h"

#include <algorithm>

namespace qv7 {
namespace tessarium {
namespace {

// The blocks as a range of matrices with their types.
struct block_range {
    std::vector<dense2D<unsigned>> groups;
    dense1D<int, 8> FEs;
    dense2D<unsigned> const* first() const { return groups.data(); }
    dense2D<unsigned> const* last() const { return groups.data() + groups.size(); }
};

bool range_of(mesh const& m, block_range& range)
{
    for (element_block const& b : m.blocks) {
        range.groups.push_back(b.connect);
        if (!range.FEs.push_back(b.type)) return false;
    }
    return true;
}

// The blocks as one matrix as tall as the tallest, shorter elements padded with NONE_ID, cut into
// groups; one value per column, the reference or `otherwise`.
struct grouped_blocks {
    dense2D<unsigned> connectM;
    dense1D<unsigned, 8> indices;
    dense1D<int, 8> FEs;
    dense1D<unsigned, 8> values;
};

bool grouped_of(mesh const& m, unsigned otherwise, grouped_blocks& g)
{
    std::size_t rows = 0, cols = 0;
    for (element_block const& b : m.blocks) rows = std::max(rows, b.connect.rows()), cols += b.connect.cols();
    if (!g.connectM.resize(rows, cols, NONE_ID) || !g.values.resize(cols) || !g.indices.push_back(0)) return false;
    std::size_t j = 0;
    for (element_block const& b : m.blocks) {
        for (std::size_t e = 0; e < b.connect.cols(); ++e, ++j) {
            std::copy(b.connect.col(e), b.connect.col(e) + b.connect.rows(), g.connectM.col(j));
            g.values[j] = b.references.empty() ? otherwise : b.references[e];
        }
        if (!g.FEs.push_back(b.type) || !g.indices.push_back(static_cast<unsigned>(j))) return false;
    }
    return true;
}

// The triangles, or the quadrangles, of all blocks in one matrix.
bool gathered(mesh const& m, element_type type, dense2D<unsigned>& M)
{
    std::size_t cols = 0;
    for (element_block const& b : m.blocks) cols += b.type == type ? b.connect.cols() : 0;
    if (!M.resize(nbr_nodes(type), cols)) return false;
    std::size_t j = 0;
    for (element_block const& b : m.blocks)
        if (b.type == type)
            for (std::size_t e = 0; e < b.connect.cols(); ++e, ++j)
                std::copy(b.connect.col(e), b.connect.col(e) + b.connect.rows(), M.col(j));
    return true;
}

int no_memory(io_report& r, std::string const& path)
{
    return __fail(r, io_no_memory, path, "not enough memory to arrange the blocks");
}

// The format function's result: 0, or its refusal code in the report.
int result(io_report& r, std::string const& path, int code)
{
    if (code >= 0) return 0;
    return __fail(r, code == -199 ? io_no_memory : io_bad_mesh, path,
                  "the format function refused the mesh with code " + std::to_string(code));
}

bool any_type(element_type)
{
    return true;
}
bool nastran_card(element_type type)
{
    return __nastran_cards[type].name != nullptr;
}
bool femap_record(element_type type)
{
    return __femap_kind_of_type(type) != nullptr;
}

// The writers of a range of groups, one group per block.
int write_range(__range_writer write, __output_files& files, std::string const& path, mesh const& m, io_report& r)
{
    block_range range;
    std::string temp = files.reserve(path, r);
    if (temp.empty()) return r.code;
    if (!range_of(m, range)) return no_memory(r, path);
    __count_written(r, m, any_type);
    return result(r, path, write(temp.c_str(), m.pos, range.first(), range.last(), range.FEs));
}

// The writers of one matrix cut into groups, the references (or 1) as values per element.
int write_grouped(__grouped_writer write, bool (*keeps)(element_type), __output_files& files, std::string const& path,
                  mesh const& m, io_report& r)
{
    grouped_blocks g;
    std::string temp = files.reserve(path, r);
    if (temp.empty()) return r.code;
    if (!grouped_of(m, 1, g)) return no_memory(r, path);
    __count_written(r, m, keeps);
    return result(r, path, write(temp.c_str(), m.pos, g.connectM, g.indices, g.FEs, g.values));
}
bool triangle(element_type type)
{
    return type == ET_FACE_T3;
}
bool obj_face(element_type type)
{
    return type == ET_FACE_T3 || type == ET_FACE_Q4;
}

}  // namespace

int __write_VTK_faithful(__output_files& files, std::string const& path, mesh const& m, io_options const&, io_report& r)
{
    return write_range(vtk_output, files, path, m, r);
}

int __write_medit_faithful(__output_files& files, std::string const& path, mesh const& m, io_options const&,
                           io_report& r)
{
    return write_range(medit_output, files, path, m, r);
}

int __write_ensight_faithful(__output_files& files, std::string const& path, mesh const& m, io_options const&,
                             io_report& r)
{
    return write_range(ensight_output, files, path, m, r);
}

// The first node field as a scalar or vector solution.
int __write_medit_sol_faithful(__output_files& files, std::string const& path, mesh const& m, io_options const&,
                               io_report& r)
{
    if (m.node_fields.empty()) return __fail(r, io_bad_mesh, path, "no node field to write");
    std::string temp = files.reserve(path, r);
    if (temp.empty()) return r.code;
    dense2D<double> const& values = m.node_fields.front().values;
    unsigned dim = m.pos.rows() == 2 ? 2 : 3;
    r.nodes = m.nbr_nodes();
    for (std::size_t k = 1; k < m.node_fields.size(); ++k) __pass_over(r, "node field " + m.node_fields[k].name, 1);
    if (values.rows() == 1) return result(r, path, medit_scalar(temp.c_str(), dim, values.flat()));
    return result(r, path, medit_vector(temp.c_str(), dim, values));
}

int __write_NASTRAN_faithful(__output_files& files, std::string const& path, mesh const& m, io_options const&,
                             io_report& r)
{
    return write_grouped(NASTRAN_output, nastran_card, files, path, m, r);
}

int __write_FEMAP_faithful(__output_files& files, std::string const& path, mesh const& m, io_options const&,
                           io_report& r)
{
    return write_grouped(FEMAP_output, femap_record, files, path, m, r);
}

int __write_STL_faithful(__output_files& files, std::string const& path, mesh const& m, io_options const& options,
                         io_report& r)
{
    dense2D<unsigned> T3;
    std::string temp = files.reserve(path, r);
    if (temp.empty()) return r.code;
    if (!gathered(m, ET_FACE_T3, T3)) return no_memory(r, path);
    __count_written(r, m, triangle);
    return result(r, path, STL_output(temp.c_str(), m.pos, T3, !options.binary));
}

int __write_OBJ_faithful(__output_files& files, std::string const& path, mesh const& m, io_options const&, io_report& r)
{
    dense2D<unsigned> T3, Q4;
    dense2D<double> none;
    std::string temp = files.reserve(path, r);
    if (temp.empty()) return r.code;
    if (!gathered(m, ET_FACE_T3, T3) || !gathered(m, ET_FACE_Q4, Q4)) return no_memory(r, path);
    __count_written(r, m, obj_face);
    return result(r, path, WavefrontOBJ_output(temp.c_str(), m.pos, none, none, T3, Q4));
}

}  // namespace tessarium
}  // namespace qv7
