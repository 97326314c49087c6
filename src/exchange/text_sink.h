// Buffered text output onto a C stream, with number formatting that gives the bytes of the
// corresponding printf conversions ("%d", "%8d", "%E", "%f", "%12.5e") without parsing a format
// string for every number.
#pragma once

#include <cstddef>
#include <cstdio>
#include <cstring>

namespace qv7 {
namespace tessarium {

class __text_sink {
public:
    explicit __text_sink(std::FILE* stream) noexcept : stream_(stream) {}
    __text_sink(__text_sink const&) = delete;
    __text_sink& operator=(__text_sink const&) = delete;
    ~__text_sink() { flush(); }

    // Hands what is buffered to the stream; the stream's own buffering and errors are its business.
    void flush() noexcept;

    void text(char const* s, std::size_t n) noexcept;
    void text(char const* s) noexcept { text(s, std::strlen(s)); }
    void put(char c) noexcept
    {
        if (used_ == capacity) flush();
        buffer_[used_++] = c;
    }

    // "%d"
    void integer(int value) noexcept;
    // "%*d": right-aligned in a field of at least `width` characters.
    void integer(int value, unsigned width) noexcept;
    // "%.*E" when `upper`, else "%.*e", right-aligned in at least `width` characters.
    void scientific(double value, int precision, bool upper, unsigned width = 0) noexcept;
    // "%f"
    void fixed(double value) noexcept;

    // A value written with "%d" from an unsigned source: same bits, read as int.
    static int as_int(unsigned long value) noexcept { return static_cast<int>(static_cast<unsigned>(value)); }

private:
    static constexpr std::size_t capacity = 1 << 16;
    // Room that one number of any of the forms above may take ("%f" of the largest double
    // has 309 digits before the point).
    static constexpr std::size_t number_room = 400;

    char* reserve(std::size_t n) noexcept
    {
        if (capacity - used_ < n) flush();
        return buffer_ + used_;
    }
    void pad_and_commit(char* start, std::size_t length, unsigned width) noexcept;

    std::FILE* stream_;
    std::size_t used_ = 0;
    char buffer_[capacity];
};

}  // namespace tessarium
}  // namespace qv7
