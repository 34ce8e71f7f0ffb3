/* Built as strict C99 so a C++-only construct in the public header breaks the build. */
#include "zolvex/zolvex_core.h"

int zolvex_core_c_header_check(void);

int zolvex_core_c_header_check(void) {
    uint8_t any = (uint8_t)(zolvex_core_cpu_has_sse2() | zolvex_core_cpu_has_neon());
    return (int)any + (int)zolvex_core_init() + (int)zolvex_core_fini();
}
