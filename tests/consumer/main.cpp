#include <tessarium/tessarium.h>

#include <cstdio>
#include <cstring>

int main()
{
    qv7::dense2D<unsigned> tets;
    if (!tets.resize(4, 1)) return 1;
    for (unsigned i = 0; i < 4; ++i) tets(i, 0) = i;
    bool ok = qv7::tessarium::check_IDs(tets, qv7::ET_TETRA4, 4) &&
              !qv7::tessarium::check_IDs(tets, qv7::ET_TETRA4, 3) &&
              std::strcmp(qv7::tessarium::version(), "4.8.0.0") == 0;
    std::printf("%s\n", ok ? "consumer ok" : "consumer FAILED");
    return ok ? 0 : 1;
}
