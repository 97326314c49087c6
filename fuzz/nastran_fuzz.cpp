// Fuzzes the NASTRAN deck reader on arbitrary text.
#include "exchange/nastran_input.h"
#include "reader_checks.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    int result = read_and_check(data, size, qv7::tessarium::__NASTRAN_input);
    require(result >= -1 || result == -199);
    return 0;
}
