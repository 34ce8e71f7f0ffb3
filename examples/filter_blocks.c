/* Filter design and block filtering: a 4th-order Butterworth low-pass at
 * 1 kHz for data sampled at 48 kHz. Its frequency response is read from the
 * design, then a 100 Hz tone with a 10 kHz disturbance runs through it in
 * blocks, the delay line carried from block to block. */
#include <math.h>
#include <stdint.h>
#include <stdio.h>
#include <zolvex_m.h>

#define FS 48000.0
#define BLOCK 480
#define BLOCKS 20
#define POINTS 512

static double magnitude_at(const double* frequencies, const double* response, double f) {
    int i = 0;
    while (i + 1 < POINTS && frequencies[i + 1] <= f) ++i;
    return hypot(response[2 * i], response[2 * i + 1]);
}

int main(void) {
    zolvex_m_filter_state* filter = NULL;
    static double frequencies[POINTS], response[2 * POINTS];
    static float block[BLOCK], tone[BLOCK];
    const double* const* sections;
    uint32_t section_count;
    int failed = 0;

    zolvex_m_init();
    int32_t status = zolvex_m_filter_iir_butterworth(ZOLVEX_M_FILTER_LOWPASS, 4, FS, 1000.0, 0.0, &filter);
    if (status == ZOLVEX_M_STATUS_SUCCESS) status = zolvex_m_filter_iir_get_sos(filter, &sections, &section_count);
    if (status == ZOLVEX_M_STATUS_SUCCESS)
        status = zolvex_m_filter_iir_freqz_zpk(filter, POINTS, FS, false, false, frequencies, response);
    if (status != ZOLVEX_M_STATUS_SUCCESS) {
        fprintf(stderr, "design: %s\n", zolvex_m_status_str(status));
        return 1;
    }
    double at_100 = magnitude_at(frequencies, response, 100.0);
    double at_10k = magnitude_at(frequencies, response, 10000.0);
    printf("%u sections; |H| at 100 Hz %.4f, at 10 kHz %.2e\n", section_count, at_100, at_10k);
    failed |= section_count != 2 || fabs(at_100 - 1.0) > 1e-3 || at_10k > 1e-4;

    /* Blocks of 10 ms; the output of the last block must be the clean tone. */
    double worst = 0;
    for (uint64_t b = 0; b < BLOCKS && !failed; ++b) {
        zolvex_m_waveform_cosine_f32(block, BLOCK, 0.3, 0.0, 10000.0 / FS, 0.0, b * BLOCK);
        zolvex_m_waveform_cosine_f32(tone, BLOCK, 1.0, 0.0, 100.0 / FS, 0.0, b * BLOCK);
        zolvex_m_add_f32(block, tone, block, BLOCK);
        status = zolvex_m_filter_execute_f32(block, block, BLOCK, filter);
        if (status != ZOLVEX_M_STATUS_SUCCESS) {
            fprintf(stderr, "filter: %s\n", zolvex_m_status_str(status));
            failed = 1;
        }
        if (b == BLOCKS - 1) {
            /* The filter delays the tone by its group delay: compare peaks. */
            float min, max;
            zolvex_m_minmax_f32(block, BLOCK, &min, &max);
            worst = fmax(fabs(max - 1.0), fabs(min + 1.0));
            printf("last block: min %.4f max %.4f\n", min, max);
        }
    }
    failed |= worst > 0.01;
    zolvex_m_filter_state_destroy(filter);
    zolvex_m_fini();
    return failed;
}
