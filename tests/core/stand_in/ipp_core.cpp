// Stand-in for the accelerator's core library: the three base functions.
#include "core/ipp.h"

#define ZOLVEX_M_STAND_IN(name) \
    extern "C" __attribute__((visibility("default"))) int name() { return 0; }
ZOLVEX_M_IPP_BASE(ZOLVEX_M_STAND_IN)
