#include "mesh_io/file_text.h"

#include <algorithm>
#include <cstdio>

namespace qv7 {
namespace tessarium {

std::string __file_text(std::string const& path, std::size_t tail)
{
    std::string text;
    std::FILE* in = std::fopen(path.c_str(), "rb");
    if (!in) return text;
    if (tail != 0 && std::fseek(in, 0, SEEK_END) == 0) {
        long size = std::ftell(in);
        std::fseek(in, size > static_cast<long>(tail) ? size - static_cast<long>(tail) : 0, SEEK_SET);
    }
    if (tail == 0 && std::fseek(in, 0, SEEK_END) == 0) {
        long size = std::ftell(in);
        if (size > 0) text.reserve(static_cast<std::size_t>(size));
        std::rewind(in);
    }
    char chunk[1 << 16];
    for (std::size_t n; (n = std::fread(chunk, 1, sizeof chunk, in)) > 0;) text.append(chunk, n);
    std::fclose(in);
    return text;
}

std::size_t __line_number(std::string const& text, std::size_t offset)
{
    offset = std::min(offset, text.size());
    std::size_t line = 1 + static_cast<std::size_t>(std::count(text.begin(), text.begin() + offset, '\n'));
    // An offset just past a line feed still belongs to the line that feed ended.
    return offset > 0 && text[offset - 1] == '\n' ? line - 1 : line;
}

std::string __line_at(std::string const& text, std::size_t line)
{
    std::size_t start = 0;
    for (std::size_t k = 1; k < line && start != std::string::npos; ++k) {
        start = text.find('\n', start);
        if (start != std::string::npos) ++start;
    }
    if (start == std::string::npos || start >= text.size()) return {};
    std::string s = text.substr(start, std::min<std::size_t>(text.find('\n', start) - start, 60));
    if (!s.empty() && s.back() == '\r') s.pop_back();
    return s;
}

}  // namespace tessarium
}  // namespace qv7
