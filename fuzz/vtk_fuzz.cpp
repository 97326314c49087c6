// Fuzzes read_mesh on legacy VTK files, text and binary.
#include "mesh_reader_checks.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    read_mesh_and_check(data, size, ".vtk");
    return 0;
}
