// Fuzzes the Wavefront OBJ reader: each input is a file, and what it leaves must be well formed.
#include "file_input.h"
#include "reader_checks.h"
#include "tessarium/wavefront_obj.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    qv7::dense2D<double> pos, normals, textures;
    qv7::dense2D<unsigned> T3, Q4;
    int result = qv7::tessarium::WavefrontOBJ_input(input_file(data, size, ".obj"), pos, normals, textures, T3, Q4);
    require(result == 0 || result == -2 || result == -199);
    require(pos.empty() || pos.rows() == 3);
    require(normals.empty() || normals.rows() == 3);
    require(textures.rows() <= 3);
    require((T3.empty() || T3.rows() == 3) && (Q4.empty() || Q4.rows() == 4));
    return 0;
}
