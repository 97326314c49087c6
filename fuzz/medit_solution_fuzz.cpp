// Fuzzes read_fields on Medit solution text: on failure the mesh keeps no field.
#include "mesh_reader_checks.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    qv7::tessarium::mesh m;
    qv7::tessarium::io_report r = qv7::tessarium::read_fields(input_file(data, size, ".sol"), m);
    require(r || m.node_fields.empty());
    return 0;
}
