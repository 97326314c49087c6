// Small file helpers of the readers.
#pragma once

#include <cstddef>
#include <string>

namespace qv7 {
namespace tessarium {

// The whole file, or its last `tail` bytes when tail is not 0; empty when it cannot be read.
std::string __file_text(std::string const& path, std::size_t tail = 0);

// The 1-based number of the line that ends at or runs through `offset`, and that line's text,
// cut to 60 characters, for messages.
std::size_t __line_number(std::string const& text, std::size_t offset);
std::string __line_at(std::string const& text, std::size_t line);

}  // namespace tessarium
}  // namespace qv7
