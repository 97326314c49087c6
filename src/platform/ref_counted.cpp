#include "tessarium/ref_counted.h"

namespace qv7 {
namespace math1 {

void ref_counted::__destroy() noexcept
{
    delete this;
}

}  // namespace math1
}  // namespace qv7
