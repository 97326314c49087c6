// The parts of read_mesh and write_mesh: reports, temporary output files, and the table of
// formats through which each format's reader and writers plug in.
#pragma once

#include "tessarium/mesh.h"

#include <cstdio>
#include <string>
#include <vector>

namespace qv7 {
namespace tessarium {

// Sets the failure of a report: the code and "<file>: <what>". Returns the code.
int __fail(io_report& r, int code, std::string const& file, std::string const& what);
// Adds n to the count of `what` among the things passed over.
void __pass_over(io_report& r, std::string const& what, std::size_t n);
// "TETRA10" for ET_TETRA10.
char const* __type_name(element_type type) noexcept;
// The node count as the text of a node number, "node 12 (of 10)".
std::string __ordinal(char const* noun, std::size_t zero_based);

// Files written under temporary names beside their final names; commit renames them all, and
// whatever is not committed is removed, so a failed write leaves nothing behind.
class __output_files {
public:
    __output_files() = default;
    __output_files(__output_files const&) = delete;
    __output_files& operator=(__output_files const&) = delete;
    ~__output_files();

    // The temporary file of final_path, open for writing; null when it cannot be made (r says why).
    std::FILE* open(std::string const& final_path, io_report& r);
    // A fresh temporary name for a writer that opens the file itself; empty on failure.
    std::string reserve(std::string const& final_path, io_report& r);
    // Flushes and closes every stream, checks that all the data went out, renames. 0, or the
    // failure set in r.
    int commit(io_report& r);

private:
    struct entry {
        std::string temp, final;
        std::FILE* stream;
    };
    std::vector<entry> entries_;
};

using __mesh_reader = int (*)(std::string const& path, mesh& m, io_report& r);
using __mesh_writer = int (*)(__output_files& files, std::string const& path, mesh const& m, io_options const& options,
                              io_report& r);

// One format: its extensions (lower case) and its functions; a null reader is a format without
// one yet. The faithful reader, when there is one, reads through the format function.
struct __format_entry {
    char const* name;
    char const* extensions[3];
    __mesh_reader read;
    __mesh_writer write;           // portable
    __mesh_writer write_faithful;  // through the format function; null when there is none
    __mesh_reader read_faithful = nullptr;
};

// The entry of the path's extension, in any case; null when none fits.
__format_entry const* __format_of(std::string const& path);

// The checks every writer relies on: pos, node IDs, block shapes and nodes, references, fields.
int __check_mesh(std::string const& path, mesh const& m, io_report& r);

// Fails with `code` at the first element that refers to a node m does not have, naming it as
// `noun` k (k counted over all blocks, from 1).
int __check_elements(std::string const& path, mesh const& m, io_report& r, char const* noun, int code);

// The element counts a writer hands on, and the element types it leaves out, with their counts.
void __count_written(io_report& r, mesh const& m, bool (*keeps)(element_type));

// ---- readers ----
int __read_NASTRAN(std::string const& path, mesh& m, io_report& r);
int __read_NASTRAN_exact(std::string const& path, mesh& m, io_report& r);
int __read_FEMAP(std::string const& path, mesh& m, io_report& r);
int __read_FEMAP_exact(std::string const& path, mesh& m, io_report& r);
int __read_STL(std::string const& path, mesh& m, io_report& r);
int __read_OBJ(std::string const& path, mesh& m, io_report& r);
int __read_OBJ_exact(std::string const& path, mesh& m, io_report& r);
int __read_medit(std::string const& path, mesh& m, io_report& r);
int __read_VTK(std::string const& path, mesh& m, io_report& r);
int __read_gmsh(std::string const& path, mesh& m, io_report& r);
int __read_meshb(std::string const& path, mesh& m, io_report& r);
// A solution file handed to read_mesh: refused, pointing to read_fields.
int __refuse_solution_as_mesh(std::string const& path, mesh& m, io_report& r);

// ---- writers ----
int __write_VTK(__output_files&, std::string const&, mesh const&, io_options const&, io_report&);
int __write_medit(__output_files&, std::string const&, mesh const&, io_options const&, io_report&);
int __write_medit_sol(__output_files&, std::string const&, mesh const&, io_options const&, io_report&);
int __write_NASTRAN(__output_files&, std::string const&, mesh const&, io_options const&, io_report&);
int __write_FEMAP(__output_files&, std::string const&, mesh const&, io_options const&, io_report&);
int __write_ensight(__output_files&, std::string const&, mesh const&, io_options const&, io_report&);
int __write_STL(__output_files&, std::string const&, mesh const&, io_options const&, io_report&);
int __write_OBJ(__output_files&, std::string const&, mesh const&, io_options const&, io_report&);
int __write_gmsh(__output_files&, std::string const&, mesh const&, io_options const&, io_report&);
int __write_meshb(__output_files&, std::string const&, mesh const&, io_options const&, io_report&);

int __write_VTK_faithful(__output_files&, std::string const&, mesh const&, io_options const&, io_report&);
int __write_medit_faithful(__output_files&, std::string const&, mesh const&, io_options const&, io_report&);
int __write_medit_sol_faithful(__output_files&, std::string const&, mesh const&, io_options const&, io_report&);
int __write_NASTRAN_faithful(__output_files&, std::string const&, mesh const&, io_options const&, io_report&);
int __write_FEMAP_faithful(__output_files&, std::string const&, mesh const&, io_options const&, io_report&);
int __write_ensight_faithful(__output_files&, std::string const&, mesh const&, io_options const&, io_report&);
int __write_STL_faithful(__output_files&, std::string const&, mesh const&, io_options const&, io_report&);
int __write_OBJ_faithful(__output_files&, std::string const&, mesh const&, io_options const&, io_report&);

}  // namespace tessarium
}  // namespace qv7
