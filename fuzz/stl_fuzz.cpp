// Fuzzes the STL reader, both forms and the welding: each input is a file; a failure leaves
// nothing, a success a triangle mesh whose nodes are all in pos.
#include "file_input.h"
#include "reader_checks.h"
#include "tessarium/stl.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    qv7::dense2D<double> pos;
    qv7::dense2D<unsigned> T3;
    int result = qv7::tessarium::STL_input(input_file(data, size, ".stl"), pos, T3);
    require(result == 0 || result == -2 || result == -3 || result == -199);
    if (result != 0) require(pos.empty() && T3.empty());
    require(pos.empty() || pos.rows() == 3);
    require(T3.empty() || T3.rows() == 3);
    for (std::size_t j = 0; j < T3.cols(); ++j)
        for (std::size_t k = 0; k < 3; ++k) require(T3(k, j) < pos.cols());
    return 0;
}
