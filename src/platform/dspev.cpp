#include "tessarium/lapack.h"

#include <cstddef>

extern "C" void dspev_(char const* jobz, char const* uplo, int const* n, double* ap, double* w, double* z,
                       int const* ldz, double* work, int* info, std::size_t jobz_len, std::size_t uplo_len);

namespace qv7 {
namespace lapack {

void dspev(char jobz, char uplo, long n, double* ap, double* w, double* z, long ldz, double* work, long& info)
{
    int n32 = static_cast<int>(n), ldz32 = static_cast<int>(ldz), info32 = 0;
    dspev_(&jobz, &uplo, &n32, ap, w, z, &ldz32, work, &info32, 1, 1);
    info = info32;
}

}  // namespace lapack
}  // namespace qv7
