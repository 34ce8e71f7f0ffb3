// Stand-in for the accelerator's signal-processing library: every name of
// the function table, except the one the build renames away with
// -D<name>=<name>_left_out, so that the library is found but incomplete.
// Like the real one it depends on the core library (which supplies the base
// functions), so it calls into it.
#include "core/ipp.h"

extern "C" int ippGetL2CacheSize();

#define ZOLVEX_M_STAND_IN(name) \
    extern "C" __attribute__((visibility("default"))) int name() { return ippGetL2CacheSize() - 1; }
ZOLVEX_M_IPP_TABLE(ZOLVEX_M_STAND_IN)
