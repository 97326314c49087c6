// Fuzzes the FEMAP neutral reader on arbitrary text.
#include "exchange/femap_input.h"
#include "reader_checks.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    int result = read_and_check(data, size, qv7::tessarium::__FEMAP_input);
    require(result == 0 || result == -102 || result == -199);
    return 0;
}
