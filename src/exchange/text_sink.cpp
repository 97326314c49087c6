#include "exchange/text_sink.h"

#include <charconv>
#include <cmath>

namespace qv7 {
namespace tessarium {
namespace {

// Decimal digits of v written backwards ending at `end`; returns the first digit.
char* digits_before(char* end, unsigned v) noexcept
{
    static constexpr char pairs[] =
        "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
        "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
        "8081828384858687888990919293949596979899";
    while (v >= 100) {
        unsigned r = (v % 100) * 2;
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

}  // namespace

void __text_sink::flush() noexcept
{
    if (used_ != 0) std::fwrite(buffer_, 1, used_, stream_);
    used_ = 0;
}

void __text_sink::text(char const* s, std::size_t n) noexcept
{
    if (n > capacity) {
        flush();
        std::fwrite(s, 1, n, stream_);
        return;
    }
    std::memcpy(reserve(n), s, n);
    used_ += n;
}

void __text_sink::integer(int value) noexcept { integer(value, 0); }

void __text_sink::integer(int value, unsigned width) noexcept
{
    char scratch[16];
    char* end = scratch + sizeof scratch;
    unsigned magnitude = value < 0 ? 0u - static_cast<unsigned>(value) : static_cast<unsigned>(value);
    char* first = digits_before(end, magnitude);
    if (value < 0) *--first = '-';
    std::size_t length = static_cast<std::size_t>(end - first);
    char* out = reserve(width + length);
    std::size_t pad = width > length ? width - length : 0;
    std::memset(out, ' ', pad);
    std::memcpy(out + pad, first, length);
    used_ += pad + length;
}

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

void __text_sink::scientific(double value, int precision, bool upper, unsigned width) noexcept
{
    char* out = reserve(number_room + width);
    // The shortest-exact conversion of to_chars with a precision rounds as printf does; printf
    // keeps its own spelling of infinities and NaNs.
    if (std::isfinite(value)) {
        auto result = std::to_chars(out, out + number_room, value, std::chars_format::scientific, precision);
        if (result.ec == std::errc()) {
            std::size_t length = static_cast<std::size_t>(result.ptr - out);
            if (upper) {
                for (char* p = out; p != result.ptr; ++p)
                    if (*p == 'e') *p = 'E';
            }
            pad_and_commit(out, length, width);
            return;
        }
    }
    int length = std::snprintf(out, number_room, upper ? "%*.*E" : "%*.*e", static_cast<int>(width), precision, value);
    used_ += static_cast<std::size_t>(length);
}

void __text_sink::fixed(double value) noexcept
{
    char* out = reserve(number_room);
    if (std::isfinite(value)) {
        auto result = std::to_chars(out, out + number_room, value, std::chars_format::fixed, 6);
        if (result.ec == std::errc()) {
            used_ += static_cast<std::size_t>(result.ptr - out);
            return;
        }
    }
    int length = std::snprintf(out, number_room, "%f", value);
    used_ += static_cast<std::size_t>(length);
}

}  // namespace tessarium
}  // namespace qv7
