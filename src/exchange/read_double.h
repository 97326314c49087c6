// strtod's result for any text, with the common decimal forms taken by std::from_chars.
#pragma once

#include <charconv>
#include <cstdlib>
#include <system_error>

namespace qv7 {
namespace tessarium {

// The double that strtod reads at p, with *end set as strtod sets it; the text ends with a NUL at or
// before last, and from_chars may look as far as last. Both conversions round
// correctly, so on a plain decimal number ([-]digits[.digits][e[+-]digits]) they agree to the bit.
// Everything else goes to strtod: a '+' sign, hexadecimal, infinities and NaNs (whose sign and
// payload must come out the same), and values out of range, where strtod saturates or underflows.
inline double __read_double(char const* p, char const* last, char const** end)
{
    char const* q = p;
    while (*q == ' ' || (*q >= '\t' && *q <= '\r')) ++q;
    char const* digits = q + (*q == '-');
    bool plain = (*digits >= '0' && *digits <= '9') || (*digits == '.' && digits[1] >= '0' && digits[1] <= '9');
    if (plain && !(digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X'))) {
        double value;
        std::from_chars_result r = std::from_chars(q, last, value);
        if (r.ec == std::errc()) {
            *end = r.ptr;
            return value;
        }
    }
    char* stop;
    double value = std::strtod(p, &stop);
    *end = stop;
    return value;
}

}  // namespace tessarium
}  // namespace qv7
