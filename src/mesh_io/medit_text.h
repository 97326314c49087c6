// The words and numbers of Medit text files (meshes and solutions), "#" comments skipped.
#pragma once

#include "mesh_io/mesh_io.h"
#include "mesh_io/number_text.h"

#include <cstring>
#include <string_view>

namespace qv7 {
namespace tessarium {

struct __medit_text {
    std::string const& path;
    io_report& r;
    std::string_view text;
    std::size_t at = 0;

    // The next word; comments (from "#" to the line end) are blanks.
    bool word(std::string_view& w)
    {
        for (;;) {
            while (at < text.size() && std::strchr(" \t\r\n", text[at])) ++at;
            if (at < text.size() && text[at] == '#') {
                std::size_t end = text.find('\n', at);
                at = end == std::string_view::npos ? text.size() : end;
                continue;
            }
            break;
        }
        if (at >= text.size()) return false;
        std::size_t b = at;
        while (at < text.size() && !std::strchr(" \t\r\n#", text[at])) ++at;
        w = text.substr(b, at - b);
        return true;
    }
    int fail(std::string const& what)
    {
        return __fail(r, io_malformed, path, "byte " + std::to_string(at) + ": " + what);
    }
    bool integer(std::int64_t& v)
    {
        std::string_view w;
        return word(w) && __parse_integer(w.data(), w.data() + w.size(), v);
    }
    bool real(double& v)
    {
        std::string_view w;
        return word(w) && __parse_real(w.data(), w.data() + w.size(), v);
    }
    // A count of entries of `numbers` numbers each, which the rest of the text must be able to hold.
    bool count(std::string_view keyword, unsigned numbers, std::size_t& n)
    {
        std::int64_t v;
        if (!integer(v) || v < 0) return fail(std::string(keyword) + ": no count"), false;
        if (static_cast<std::uint64_t>(v) > (text.size() - at) / (2 * numbers))
            return fail(std::string(keyword) + ": " + std::to_string(v) +
                        " entries cannot fit in the rest of the file"),
                   false;
        n = static_cast<std::size_t>(v);
        return true;
    }
};

}  // namespace tessarium
}  // namespace qv7
