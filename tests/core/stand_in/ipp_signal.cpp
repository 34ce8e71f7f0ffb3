// Stand-in for the accelerator's signal-processing library: every name of
// the function table, except the one the build renames away with
// -D<name>=<name>_left_out, so that the library is found but incomplete.
#include "core/ipp.h"

#define ZOLVEX_M_STAND_IN(name) \
    extern "C" __attribute__((visibility("default"))) int name() { return -1; }
ZOLVEX_M_IPP_TABLE(ZOLVEX_M_STAND_IN)
