// libFuzzer harness of the Wavefront OBJ reader: each input is written to a file and read back.
#include "tessarium/wavefront_obj.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    static std::string const path = "/tmp/tessarium_obj_fuzz_" + std::to_string(getpid()) + ".obj";
    std::FILE* f = std::fopen(path.c_str(), "wb");
    if (!f) return 0;
    std::fwrite(data, 1, size, f);
    std::fclose(f);
    qv7::dense2D<double> pos, normals, textures;
    qv7::dense2D<unsigned> T3, Q4;
    qv7::tessarium::WavefrontOBJ_input(path.c_str(), pos, normals, textures, T3, Q4);
    return 0;
}
