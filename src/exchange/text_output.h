// Buffered text output for the writers: text is gathered in memory and goes out in large writes.
#pragma once

#include <charconv>
#include <cstdio>
#include <cstring>

namespace qv7 {
namespace tessarium {

class __text_output {
public:
    explicit __text_output(std::FILE* out) noexcept : out_(out) {}
    __text_output(__text_output const&) = delete;
    __text_output& operator=(__text_output const&) = delete;
    ~__text_output() { flush(); }

    void flush() noexcept
    {
        if (size_) std::fwrite(buffer_, 1, size_, out_);
        size_ = 0;
    }
    __text_output& put(char c) noexcept
    {
        make_room(1);
        buffer_[size_++] = c;
        return *this;
    }
    __text_output& put(char const* text) noexcept
    {
        std::size_t n = std::strlen(text);
        if (!make_room(n)) {
            std::fwrite(text, 1, n, out_);
            return *this;
        }
        std::memcpy(buffer_ + size_, text, n);
        size_ += n;
        return *this;
    }
    // Decimal integer, as printf's %d or %u prints it.
    template <class Int>
    __text_output& put_integer(Int value) noexcept
    {
        make_room(number_max);
        size_ = static_cast<std::size_t>(std::to_chars(buffer_ + size_, buffer_ + sizeof buffer_, value).ptr - buffer_);
        return *this;
    }
    // Values through a printf format of one short conversion, such as "%16E" or "%g".
    template <class... Values>
    __text_output& print(char const* format, Values... values) noexcept
    {
        make_room(printed_max);
        std::size_t room = sizeof buffer_ - size_;
        int n = std::snprintf(buffer_ + size_, room, format, values...);
        if (n > 0) size_ += static_cast<std::size_t>(n) < room ? static_cast<std::size_t>(n) : room - 1;
        return *this;
    }

private:
    static constexpr std::size_t number_max = 24;
    static constexpr std::size_t printed_max = 512;

    // False when n bytes do not fit even in an empty buffer.
    bool make_room(std::size_t n) noexcept
    {
        if (size_ + n > sizeof buffer_) flush();
        return n <= sizeof buffer_;
    }

    std::FILE* out_;
    std::size_t size_ = 0;
    char buffer_[1 << 16];
};

}  // namespace tessarium
}  // namespace qv7
