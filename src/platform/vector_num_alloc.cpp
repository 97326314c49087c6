#include "tessarium/ref_counted.h"

#include <cstdlib>

namespace qv7 {
namespace math1 {

void* __vector_num_alloc(std::size_t bytes) noexcept { return std::malloc(bytes); }

void __vector_num_free(void* raw) noexcept { std::free(raw); }

}  // namespace math1
}  // namespace qv7
