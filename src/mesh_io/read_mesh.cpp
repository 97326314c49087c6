#include "mesh_io/mesh_io.h"

#include <cerrno>
#include <cstring>
#include <new>
#include <utility>

#include <sys/stat.h>

namespace qv7 {
namespace tessarium {
namespace {

int read_checked(std::string const& file, mesh& m, bool faithful, io_report& r)
{
    struct stat status;
    if (stat(file.c_str(), &status) != 0)
        return __fail(r, io_cannot_open, file, std::string("cannot be opened (") + std::strerror(errno) + ")");
    if (S_ISDIR(status.st_mode)) return __fail(r, io_cannot_open, file, "is a folder, not a file");
    __format_entry const* format = __format_of(file);
    if (!format)
        return __fail(r, io_unsupported, file,
                      "unknown extension; known are .stl .obj .bdf .nas .dat .neu .mesh .meshb .sol .vtk .case .msh");
    if (!format->read)
        return __fail(r, io_unsupported, file,
                      std::string("no reader for this format yet (") + format->name + " files can be written)");
    std::FILE* probe = std::fopen(file.c_str(), "rb");
    if (!probe) return __fail(r, io_cannot_open, file, std::string("cannot be opened (") + std::strerror(errno) + ")");
    std::fclose(probe);
    if (status.st_size == 0) return __fail(r, io_malformed, file, "is empty");
    __mesh_reader read = faithful && format->read_faithful ? format->read_faithful : format->read;
    int code;
    try {  // the readers' lists grow only as far as the file's size allows, yet memory may still run out
        code = read(file, m, r);
    } catch (std::bad_alloc const&) {
        m.clear();
        return __fail(r, io_no_memory, file, "not enough memory to read it");
    }
    if (code < 0) return code;
    code = __check_elements(file, m, r, "element", io_malformed);
    if (code < 0) return code;
    r.nodes = m.nbr_nodes();
    r.elements = m.nbr_elements();
    return io_ok;
}

}  // namespace

io_report read_mesh(char const* path, mesh& m, io_options const& options)
{
    io_report r;
    m.clear();
    mesh read;
    if (!path || !*path)
        __fail(r, io_cannot_open, "(no name)", "no file name given");
    else if (read_checked(path, read, options.faithful, r) >= 0)
        m = std::move(read);
    return r;
}

}  // namespace tessarium
}  // namespace qv7
