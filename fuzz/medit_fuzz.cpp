// Fuzzes read_mesh on Medit meshes, through the exact reader.
#include "mesh_reader_checks.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    read_mesh_and_check(data, size, ".mesh");
    return 0;
}
