// Numbers as the exact readers find them in text fields: trimmed, with the exponent forms of
// fixed-field decks and of Fortran.
#pragma once

#include <cstdint>

namespace qv7 {
namespace tessarium {

// The blanks around [b, e) cut off; b and e moved inward.
void __trim(char const*& b, char const*& e) noexcept;

// A real in [b, e): "1.5e-3", "1.5E-3", "1.5D-3", "1.5-3", "-2.+4", ".5", "7", blanks anywhere
// ("73.8 E+3"). False for an empty field or any other text.
bool __parse_real(char const* b, char const* e, double& value) noexcept;

// An integer in [b, e), blanks around it allowed, an optional sign. False for an empty field,
// any other text, or more than 18 digits.
bool __parse_integer(char const* b, char const* e, std::int64_t& value) noexcept;

}  // namespace tessarium
}  // namespace qv7
