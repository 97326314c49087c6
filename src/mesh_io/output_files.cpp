#include "mesh_io/mesh_io.h"

#include <cerrno>
#include <cstring>

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qv7 {
namespace tessarium {
namespace {

// "<folder>/.<name>.XXXXXX": hidden, in the folder of the final name, so that the rename stays
// on one file system.
std::string temp_template(std::string const& final_path)
{
    std::size_t slash = final_path.rfind('/');
    std::size_t cut = slash == std::string::npos ? 0 : slash + 1;
    return final_path.substr(0, cut) + "." + final_path.substr(cut) + ".XXXXXX";
}

std::string reason()
{
    return std::strerror(errno);
}

// mkstemp makes files only the owner may read; the final file gets what fopen would give it. The
// mask is read, not set and reset, so that other threads never see it changed.
void usual_mode(int fd)
{
    mode_t mask = 022;
    if (std::FILE* status = std::fopen("/proc/self/status", "r")) {
        char line[128];
        unsigned value;
        while (std::fgets(line, sizeof line, status))
            if (std::sscanf(line, "Umask: %o", &value) == 1) mask = static_cast<mode_t>(value);
        std::fclose(status);
    }
    fchmod(fd, 0666 & ~mask);
}

}  // namespace

__output_files::~__output_files()
{
    for (entry& e : entries_) {
        if (e.stream) std::fclose(e.stream);
        std::remove(e.temp.c_str());
    }
}

std::string __output_files::reserve(std::string const& final_path, io_report& r)
{
    std::string name = temp_template(final_path);
    int fd = mkstemp(&name[0]);
    if (fd < 0) {
        __fail(r, io_cannot_open, final_path, "cannot create a file in its folder (" + reason() + ")");
        return {};
    }
    usual_mode(fd);
    close(fd);
    entries_.push_back({name, final_path, nullptr});
    return name;
}

std::FILE* __output_files::open(std::string const& final_path, io_report& r)
{
    std::string name = reserve(final_path, r);
    if (name.empty()) return nullptr;
    std::FILE* stream = std::fopen(name.c_str(), "wb");
    if (!stream) __fail(r, io_cannot_open, final_path, "cannot open for writing (" + reason() + ")");
    entries_.back().stream = stream;
    return stream;
}

int __output_files::commit(io_report& r)
{
    for (entry& e : entries_) {
        if (!e.stream) continue;
        int error = 0;
        if (std::fflush(e.stream) != 0 || std::ferror(e.stream)) error = errno ? errno : EIO;
        if (std::fclose(e.stream) != 0 && !error) error = errno ? errno : EIO;
        e.stream = nullptr;
        if (error) {
            errno = error;
            return __fail(r, io_write_failed, e.final, "the data could not all be written (" + reason() + ")");
        }
    }
    for (entry& e : entries_) {
        if (std::rename(e.temp.c_str(), e.final.c_str()) != 0)
            return __fail(r, io_cannot_open, e.final, "cannot replace the file (" + reason() + ")");
        e.temp.clear();
    }
    entries_.clear();
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
