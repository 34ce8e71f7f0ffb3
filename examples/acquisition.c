/* Acquisition: an instrument delivers two channels of 12-bit ADC codes
 * interleaved in one buffer (A, B, A, B, ...). Split them, convert each to
 * volts and report the block statistics of each channel. */
#include <math.h>
#include <stdint.h>
#include <stdio.h>
#include <zolvex_m.h>

#define FRAMES 10000
#define CHANNELS 2

/* A 12-bit ADC spans -1 V .. +1 V: volts = code * 2/4095 - 1. */
static const float VOLTS_PER_CODE = 2.0f / 4095.0f;
static const float VOLTS_AT_CODE_0 = -1.0f;

/* Stand-in for the instrument: channel A a 0.5 V sine around 0.1 V, channel
 * B a constant 0.25 V. */
static void acquire(uint16_t* interleaved) {
    const double pi = 3.14159265358979323846;
    for (int f = 0; f < FRAMES; ++f) {
        double a = 0.1 + 0.5 * sin(2 * pi * f / 100.0);
        double b = 0.25;
        interleaved[CHANNELS * f] = (uint16_t)lround((a + 1.0) * 4095.0 / 2.0);
        interleaved[CHANNELS * f + 1] = (uint16_t)lround((b + 1.0) * 4095.0 / 2.0);
    }
}

static int report(const char* name, const uint16_t* codes, float* volts) {
    float min, max, sum = 0.0f;
    double square_sum = 0.0;
    int32_t status = zolvex_m_convert_u16f32(codes, volts, FRAMES);
    if (status == ZOLVEX_M_STATUS_SUCCESS)
        status = zolvex_m_mulc_addc_f32(volts, volts, FRAMES, VOLTS_PER_CODE, VOLTS_AT_CODE_0);
    if (status == ZOLVEX_M_STATUS_SUCCESS) status = zolvex_m_minmax_f32(volts, FRAMES, &min, &max);
    /* The sums add to what is already there: start from 0. */
    if (status == ZOLVEX_M_STATUS_SUCCESS) status = zolvex_m_sum_f32(volts, FRAMES, &sum);
    if (status == ZOLVEX_M_STATUS_SUCCESS) status = zolvex_m_square_sum_f32(volts, FRAMES, &square_sum);
    if (status != ZOLVEX_M_STATUS_SUCCESS) {
        fprintf(stderr, "%s: %s\n", name, zolvex_m_status_str(status));
        return 1;
    }
    double mean = sum / FRAMES;
    double rms = sqrt(square_sum / FRAMES);
    printf("channel %s: min %.3f V  max %.3f V  mean %.3f V  rms %.3f V\n", name, min, max, mean, rms);
    return 0;
}

int main(void) {
    static uint16_t interleaved[CHANNELS * FRAMES];
    static uint16_t a[FRAMES], b[FRAMES];
    static float volts[FRAMES];
    acquire(interleaved);

    zolvex_m_init();
    int failed = zolvex_m_deinterleave2_u16(interleaved, CHANNELS * FRAMES, a, b) != ZOLVEX_M_STATUS_SUCCESS;
    failed = failed || report("A", a, volts);
    /* Channel A peaks at frame 25, a quarter of its 100-frame period. */
    failed = failed || fabsf(volts[25] - 0.6f) > 1e-3f;
    failed = failed || report("B", b, volts);
    failed = failed || fabsf(volts[0] - 0.25f) > 1e-3f;
    zolvex_m_fini();
    return failed;
}
