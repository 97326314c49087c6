#include "exchange/text_sink.h"

#include <charconv>
#include <cmath>

namespace qv7 {
namespace tessarium {
namespace {

// Decimal digits of v written backwards ending at `end`; returns the first digit.
template <class Unsigned>
char* digits_before(char* end, Unsigned v) noexcept
{
    static constexpr char pairs[] =
        "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
        "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
        "8081828384858687888990919293949596979899";
    while (v >= 100) {
        unsigned r = static_cast<unsigned>(v % 100) * 2;
        v /= 100;
        *--end = pairs[r + 1];
        *--end = pairs[r];
    }
    if (v >= 10) {
        *--end = pairs[v * 2 + 1];
        *--end = pairs[v * 2];
    } else {
        *--end = static_cast<char>('0' + v);
    }
    return end;
}

std::chars_format form_of(char conversion) noexcept
{
    switch (conversion) {
    case 'f': return std::chars_format::fixed;
    case 'g': return std::chars_format::general;
    default: return std::chars_format::scientific;
    }
}

}  // namespace

void __text_sink::flush() noexcept
{
    if (used_ != 0) std::fwrite(buffer_, 1, used_, stream_);
    used_ = 0;
}

__text_sink& __text_sink::text(char const* s, std::size_t n) noexcept
{
    if (n > capacity) {
        flush();
        std::fwrite(s, 1, n, stream_);
        return *this;
    }
    std::memcpy(reserve(n), s, n);
    used_ += n;
    return *this;
}

template <class Unsigned>
void __text_sink::digits(Unsigned magnitude, bool negative, unsigned width) noexcept
{
    char scratch[24];
    char* end = scratch + sizeof scratch;
    char* first = digits_before(end, magnitude);
    if (negative) *--first = '-';
    std::size_t length = static_cast<std::size_t>(end - first);
    char* out = reserve(width + length);
    std::size_t pad = width > length ? width - length : 0;
    std::memset(out, ' ', pad);
    std::memcpy(out + pad, first, length);
    used_ += pad + length;
}

template void __text_sink::digits(unsigned, bool, unsigned) noexcept;
template void __text_sink::digits(unsigned long, bool, unsigned) noexcept;

void __text_sink::pad_and_commit(char* start, std::size_t length, unsigned width) noexcept
{
    if (length < width) {
        std::size_t pad = width - length;
        std::memmove(start + pad, start, length);
        std::memset(start, ' ', pad);
        length = width;
    }
    used_ += length;
}

__text_sink& __text_sink::real(double value, char conversion, int precision, unsigned width) noexcept
{
    char* out = reserve(number_room + width);
    // to_chars with a precision rounds as printf does; printf keeps its own spelling of
    // infinities and NaNs.
    if (std::isfinite(value)) {
        auto result = std::to_chars(out, out + number_room, value, form_of(conversion), precision);
        if (result.ec == std::errc()) {
            if (conversion == 'E') {
                for (char* p = out; p != result.ptr; ++p)
                    if (*p == 'e') *p = 'E';
            }
            pad_and_commit(out, static_cast<std::size_t>(result.ptr - out), width);
            return *this;
        }
    }
    char format[] = "%*.*?";
    format[4] = conversion;
    int length = std::snprintf(out, number_room, format, static_cast<int>(width), precision, value);
    used_ += static_cast<std::size_t>(length);
    return *this;
}

}  // namespace tessarium
}  // namespace qv7
