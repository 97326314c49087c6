// Numbers read from the bytes of a binary file in either byte order, never past its end.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>

namespace qv7 {
namespace tessarium {

struct __byte_reader {
    std::string const& bytes;
    std::size_t at = 0;
    bool swap = false;  // the file's byte order is not the machine's

    std::size_t left() const noexcept { return bytes.size() - at; }
    template <class T>
    bool get(T& v) noexcept
    {
        if (left() < sizeof(T)) return false;
        char b[sizeof(T)];
        std::memcpy(b, bytes.data() + at, sizeof(T));
        if (swap) std::reverse(b, b + sizeof(T));
        std::memcpy(&v, b, sizeof(T));
        at += sizeof(T);
        return true;
    }
};

}  // namespace tessarium
}  // namespace qv7
