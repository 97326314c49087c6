// Symmetric eigen-decomposition in packed storage, from the system LAPACK.
#pragma once

#include "export.h"
TESSARIUM_EXPORT_BEGIN
namespace qv7 {
namespace lapack {

// Behaves as LAPACK's dspev: eigenvalues in w (ascending), eigenvectors in z when jobz is 'V'.
void dspev(char jobz, char uplo, long n, double* ap, double* w, double* z, long ldz, double* work, long& info);

}  // namespace lapack
}  // namespace qv7
TESSARIUM_EXPORT_END
