// Fuzzes read_mesh on Wavefront OBJ files, through the exact reader.
#include "mesh_reader_checks.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    read_mesh_and_check(data, size, ".obj");
    return 0;
}
