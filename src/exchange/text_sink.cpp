#include "exchange/text_sink.h"

#include <cmath>

namespace qv7 {
namespace tessarium {
namespace {

std::chars_format form_of(char conversion) noexcept
{
    switch (conversion) {
    case 'f':
        return std::chars_format::fixed;
    case 'g':
        return std::chars_format::general;
    default:
        return std::chars_format::scientific;
    }
}

}  // namespace

void __text_sink::flush() noexcept
{
    if (used_ != 0 && std::fwrite(buffer_, 1, used_, stream_) != used_) failed_ = true;
    used_ = 0;
}

__text_sink& __text_sink::long_text(char const* s, std::size_t n) noexcept
{
    flush();
    if (std::fwrite(s, 1, n, stream_) != n) failed_ = true;
    return *this;
}

std::size_t __text_sink::pad(char* start, std::size_t length, unsigned width) noexcept
{
    std::size_t blanks = width - length;
    std::memmove(start + blanks, start, length);
    std::memset(start, ' ', blanks);
    return width;
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

__text_sink& __text_sink::shortest(double value) noexcept
{
    char* out = reserve(number_room);
    if (std::isfinite(value)) {
        used_ += static_cast<std::size_t>(std::to_chars(out, out + number_room, value).ptr - out);
        return *this;
    }
    used_ += static_cast<std::size_t>(std::snprintf(out, number_room, "%g", value));
    return *this;
}

}  // namespace tessarium
}  // namespace qv7
