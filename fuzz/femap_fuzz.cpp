// Fuzzes the FEMAP neutral reader on arbitrary text and checks what it leaves behind.
#include "exchange/femap_input.h"

#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

namespace {

// Node IDs up to 2^20: a fuzzed ID may then ask for at most 24 MB of coordinates.
constexpr std::size_t fuzz_max_ID = std::size_t(1) << 20;

void require(bool condition)
{
    if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    std::istringstream in(std::string(reinterpret_cast<char const*>(data), size));
    qv7::dense2D<double> pos;
    qv7::dense2D<unsigned> connectM;
    qv7::dense1D<unsigned, 8> indices, IDs;
    qv7::dense1D<int, 8> FEs;
    int result = qv7::tessarium::__FEMAP_input(in, pos, connectM, indices, FEs, IDs, fuzz_max_ID);
    require(result == 0 || result == -102 || result == -199);
    require(indices.size() >= 2 && indices[indices.size() - 1] == connectM.cols());
    require(IDs.size() == connectM.cols() && connectM.rows() <= 20);
    require(pos.empty() || pos.rows() == 3);
    return 0;
}
