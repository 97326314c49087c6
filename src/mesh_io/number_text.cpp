#include "mesh_io/number_text.h"

#include <charconv>
#include <system_error>

namespace qv7 {
namespace tessarium {
namespace {

bool is_blank(char c) noexcept
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool whole(char const* b, char const* e, double& value) noexcept
{
    if (b != e && *b == '+') ++b;
    std::from_chars_result got = std::from_chars(b, e, value);
    return got.ec == std::errc() && got.ptr == e;
}

}  // namespace

void __trim(char const*& b, char const*& e) noexcept
{
    while (b != e && is_blank(*b)) ++b;
    while (e != b && is_blank(e[-1])) --e;
}

bool __parse_real(char const* b, char const* e, double& value) noexcept
{
    __trim(b, e);
    if (b == e) return false;
    if (whole(b, e, value)) return true;
    // Blanks out, D for E, and an exponent letter before a sign that follows a digit or point.
    char text[72];
    std::size_t n = 0;
    for (char const* p = b; p != e; ++p) {
        char c = *p;
        if (is_blank(c)) continue;
        if (c == 'd' || c == 'D' || c == 'e') c = 'E';
        bool implied = (c == '+' || c == '-') && n != 0 && text[n - 1] != 'E';
        if (n + 2 >= sizeof text) return false;
        if (implied) text[n++] = 'E';
        text[n++] = c;
    }
    return whole(text, text + n, value);
}

bool __parse_integer(char const* b, char const* e, std::int64_t& value) noexcept
{
    while (b != e && is_blank(*b)) ++b;
    while (e != b && is_blank(e[-1])) --e;
    bool negative = b != e && *b == '-';
    if (b != e && (*b == '+' || *b == '-')) ++b;
    if (b == e || e - b > 18) return false;  // 18 digits cannot overflow
    std::int64_t v = 0;
    for (; b != e; ++b) {
        unsigned digit = static_cast<unsigned>(*b - '0');
        if (digit > 9) return false;
        v = 10 * v + digit;
    }
    value = negative ? -v : v;
    return true;
}

}  // namespace tessarium
}  // namespace qv7
