#include <stdint.h>
#include <stdio.h>
#include <zolvex_m.h>

int main(void) {
    uint16_t codes[4096];   /* raw 12-bit ADC codes from the instrument */
    float volts[4096];
    for (int i = 0; i < 4096; ++i)
        codes[i] = (uint16_t)i;                        /* a ramp stands in here */

    zolvex_m_init();                                   /* once per process (nests) */
    zolvex_m_convert_u16f32(codes, volts, 4096);       /* codes to float */
    zolvex_m_mulc_addc_f32(volts, volts, 4096,         /* in place: x * m + a */
                           2.0f / 4095.0f, -1.0f);
    int32_t status = zolvex_m_abs_f32(volts, volts, 4096);
    if (status != ZOLVEX_M_STATUS_SUCCESS)
        fprintf(stderr, "abs: %s\n", zolvex_m_status_str(status));
    zolvex_m_fini();

    printf("|volts| at codes 0, 2048, 4095: %.4f %.4f %.4f\n",
           volts[0], volts[2048], volts[4095]);
    return status == ZOLVEX_M_STATUS_SUCCESS ? 0 : 1;
}
