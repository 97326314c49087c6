// Buffered text output onto a C stream for the writers. Text is gathered in memory and goes out in
// large writes; numbers get the bytes of the printf conversion named at each method without a
// format string being parsed for every number.
#pragma once

#include <charconv>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <type_traits>

namespace qv7 {
namespace tessarium {

class __text_sink {
public:
    explicit __text_sink(std::FILE* stream) noexcept : stream_(stream) {}
    __text_sink(__text_sink const&) = delete;
    __text_sink& operator=(__text_sink const&) = delete;
    ~__text_sink() { flush(); }

    // Hands what is buffered to the stream; the stream's own buffering is its business.
    void flush() noexcept;
    // Whether the stream ever took fewer bytes than it was handed (a full disk, a closed pipe).
    bool failed() const noexcept { return failed_; }

    __text_sink& text(char const* s, std::size_t n) noexcept
    {
        if (n > capacity) return long_text(s, n);
        std::memcpy(reserve(n), s, n);
        used_ += n;
        return *this;
    }
    __text_sink& text(char const* s) noexcept { return text(s, std::strlen(s)); }
    __text_sink& put(char c) noexcept
    {
        if (used_ == capacity) flush();
        buffer_[used_++] = c;
        return *this;
    }

    // "%*d" of a signed value, "%*u" of an unsigned one (all the bits of its type): right-aligned
    // in a field of at least `width` characters.
    template <class Int>
    __text_sink& integer(Int value, unsigned width = 0) noexcept
    {
        static_assert(std::is_integral<Int>::value, "an integer type");
        char* out = reserve(width + integer_room);
        if (width == 0) {
            used_ += static_cast<std::size_t>(std::to_chars(out, out + integer_room, value).ptr - out);
            return *this;
        }
        char digits[integer_room];
        auto length = static_cast<std::size_t>(std::to_chars(digits, digits + integer_room, value).ptr - digits);
        std::size_t blanks = width > length ? width - length : 0;
        std::memset(out, ' ', blanks);
        std::memcpy(out + blanks, digits, length);
        used_ += blanks + length;
        return *this;
    }
    // "%*.*E" when `upper`, else "%*.*e".
    __text_sink& scientific(double value, int precision, bool upper, unsigned width = 0) noexcept
    {
        return real(value, upper ? 'E' : 'e', precision, width);
    }
    // "%f"
    __text_sink& fixed(double value) noexcept { return real(value, 'f', 6, 0); }
    // "%g"
    __text_sink& general(double value) noexcept { return real(value, 'g', 6, 0); }
    // The shortest text that reads back as the same double; printf's spelling of infinities and NaNs.
    __text_sink& shortest(double value) noexcept;

    // A value written with "%d" from an unsigned source: same bits, read as int.
    static int as_int(unsigned long value) noexcept { return static_cast<int>(static_cast<unsigned>(value)); }

private:
    static constexpr std::size_t capacity = 1 << 16;
    static constexpr std::size_t integer_room = 24;
    // Room that one number of any of the forms above may take ("%f" of the largest double
    // has 309 digits before the point).
    static constexpr std::size_t number_room = 400;

    char* reserve(std::size_t n) noexcept
    {
        if (capacity - used_ < n) flush();
        return buffer_ + used_;
    }
    // Commits the `length` characters at `start`, right-aligned in at least `width`.
    void pad_and_commit(char* start, std::size_t length, unsigned width) noexcept
    {
        if (length < width) length = pad(start, length, width);
        used_ += length;
    }
    std::size_t pad(char* start, std::size_t length, unsigned width) noexcept;
    __text_sink& long_text(char const* s, std::size_t n) noexcept;
    // `conversion` is the printf letter: 'e', 'E', 'f' or 'g'.
    __text_sink& real(double value, char conversion, int precision, unsigned width) noexcept;

    std::FILE* stream_;
    std::size_t used_ = 0;
    bool failed_ = false;
    char buffer_[capacity];
};

}  // namespace tessarium
}  // namespace qv7
