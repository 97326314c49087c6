#include "mesh_io/mesh_io.h"

namespace qv7 {
namespace tessarium {

io_report write_mesh(char const* path, mesh const& m, io_options const& options)
{
    io_report r;
    if (!path || !*path) {
        __fail(r, io_cannot_open, "(no name)", "no file name given");
        return r;
    }
    std::string file = path;
    __format_entry const* format = __format_of(file);
    if (!format) {
        __fail(r, io_unsupported, file,
               "unknown extension; known are .stl .obj .bdf .nas .dat .neu .mesh .meshb .sol .vtk .case .msh");
        return r;
    }
    if (__check_mesh(file, m, r) < 0) return r;
    __output_files files;
    // A format without a format function writes its portable form either way.
    __mesh_writer write = options.faithful && format->write_faithful ? format->write_faithful : format->write;
    int code = write(files, file, m, options, r);
    if (code >= 0) files.commit(r);
    if (r.code < 0) r.nodes = r.elements = 0;
    return r;
}

}  // namespace tessarium
}  // namespace qv7
