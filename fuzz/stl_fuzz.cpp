// libFuzzer harness of the STL reader, both forms and the welding: each input is written to a
// file and read back.
#include "tessarium/stl.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    static std::string const path = "/tmp/tessarium_stl_fuzz_" + std::to_string(getpid()) + ".stl";
    std::FILE* f = std::fopen(path.c_str(), "wb");
    if (!f) return 0;
    std::fwrite(data, 1, size, f);
    std::fclose(f);
    qv7::dense2D<double> pos;
    qv7::dense2D<unsigned> T3;
    qv7::tessarium::STL_input(path.c_str(), pos, T3);
    return 0;
}
