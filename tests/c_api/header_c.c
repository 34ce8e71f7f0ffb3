/* Compiled as strict C99: the public header must need nothing from C++. */
#include <stdio.h>
#include <string.h>

#include "zolvex_m.h"

static int failures = 0;

#define CHECK(cond)                                                                                \
    do {                                                                                           \
        if (!(cond)) {                                                                             \
            fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #cond);               \
            ++failures;                                                                            \
        }                                                                                          \
    } while (0)

int main(void) {
    const ZolvexMVersion* version = (const ZolvexMVersion*)zolvex_m_get_version();
    const OptionEntry* entry;
    float x[5] = {-1.0f, 2.0f, -3.0f, 4.0f, -0.0f};
    float y[5];
    uint16_t raw[4] = {0x0FFF, 0x0800, 0x0010, 0};
    float volts[4];
    int rows = 0;

    CHECK(version->major == 0 && version->minor == 38 && version->release == 5 && version->build == 2);
    CHECK(strcmp(zolvex_m_status_str(ZOLVEX_M_STATUS_NULLPTR), "nullptr") == 0);
    CHECK(zolvex_m_status_str(1) == NULL);

    CHECK(zolvex_m_init() == 0);
    for (entry = zolvex_m_getopt_list(); entry->id != 0; ++entry) ++rows;
    CHECK(rows == 17);

    CHECK(zolvex_m_abs_f32(x, y, 5) == 0);
    CHECK(y[0] == 1.0f && y[2] == 3.0f && y[4] == 0.0f);
    CHECK(zolvex_m_convert_u16f32(raw, volts, 4) == 0);
    CHECK(zolvex_m_mulc_addc_f32(volts, volts, 4, 2.0f / 4096.0f, -1.0f) == 0);
    CHECK(volts[0] > 0.99f && volts[1] == 0.0f && volts[3] == -1.0f);
    CHECK(zolvex_m_fini() == 0);

    if (failures == 0) printf("C API: all checks passed\n");
    return failures == 0 ? 0 : 1;
}
