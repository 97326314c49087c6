// Fuzzes read_mesh on binary Medit meshes, and read_fields on the same bytes as a binary solution.
#include "mesh_reader_checks.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    read_mesh_and_check(data, size, ".meshb");
    qv7::tessarium::mesh m;
    qv7::tessarium::io_report r = qv7::tessarium::read_fields(input_file(data, size, ".solb"), m);
    require(r ? m.node_fields.size() <= 64 * 1024 : m.node_fields.empty());
    return 0;
}
