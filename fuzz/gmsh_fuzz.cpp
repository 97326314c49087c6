// Fuzzes read_mesh on gmsh files, versions 2.2 and 4.1, text and binary.
#include "mesh_reader_checks.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    read_mesh_and_check(data, size, ".msh");
    return 0;
}
