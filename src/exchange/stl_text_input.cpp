// The text form of STL: line by line, keywords found anywhere in a lower-cased line.
#include "exchange/read_double.h"
#include "exchange/stl_soup.h"

#include <cstdlib>
#include <cstring>

namespace qv7 {
namespace tessarium {
namespace {

// Lines of at most 255 characters, lower-cased, so that keywords and exponents match in any case.
// A longer line comes back in pieces.
class text_lines {
public:
    explicit text_lines(std::FILE* file) : file_(file) {}

    bool next()
    {
        if (!std::fgets(text_, sizeof text_, file_)) return false;
        for (char* p = text_; *p; ++p)
            if (*p >= 'A' && *p <= 'Z') *p += 'a' - 'A';
        return true;
    }
    bool holds(char const* word) const { return std::strstr(text_, word) != nullptr; }
    char const* text() const { return text_; }
    char const* text_end() const { return text_ + sizeof text_; }

private:
    std::FILE* file_;
    char text_[256];
};

char const* skip_space(char const* p)
{
    while (*p == ' ' || (*p >= '\t' && *p <= '\r')) ++p;
    return p;
}

// The count of numbers that a scan of " <first> <second> %lg %lg %lg" gives: each word after
// optional white space, then up to three numbers.
int scan_triple(char const* p, char const* last, char const* first, char const* second, double* xyz)
{
    for (char const* word : {first, second}) {
        if (!word) continue;
        p = skip_space(p);
        std::size_t n = std::strlen(word);
        if (std::strncmp(p, word, n) != 0) return 0;
        p += n;
    }
    int count = 0;
    for (; count < 3; ++count) {
        char const* end;
        xyz[count] = __read_double(p, last, &end);
        if (end == p) break;
        p = end;
    }
    return count;
}

int read_facet(text_lines& line, __STL_soup& soup)
{
    double normal[3], xyz[3];
    if (scan_triple(line.text(), line.text_end(), "facet", "normal", normal) != 3) return -3;
    if (!line.next() || !line.holds("outer loop")) return -3;
    for (int k = 0; k < 3; ++k) {
        if (!line.next() || scan_triple(line.text(), line.text_end(), "vertex", nullptr, xyz) != 3) return -3;
        if (!soup.add_point(xyz)) return -199;
    }
    if (!line.next() || !line.holds("endloop")) return -3;
    if (!line.next() || !line.holds("endfacet")) return -3;
    soup.end_facet();
    return 0;
}

}  // namespace

int __STL_read_text(std::FILE* file, __STL_soup& soup)
{
    text_lines line(file);
    if (!line.next() || !line.holds("solid")) return -2;
    if (!line.next()) return -3;
    for (;;) {
        if (line.holds("color")) {
            if (!line.next()) return -3;
            continue;
        }
        if (line.holds("endsolid")) {
            if (!line.next()) return 0;
            // Another solid adds to the same mesh.
            if (line.holds("solid")) {
                if (!line.next()) return -3;
                continue;
            }
        }
        if (int r = read_facet(line, soup)) return r;
        // The file has to end with "endsolid".
        if (!line.next()) return -3;
    }
}

}  // namespace tessarium
}  // namespace qv7
