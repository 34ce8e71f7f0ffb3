/* Windowed spectrum with a plan: the amplitude spectrum of block after
 * block of a two-tone signal. The plan is made once and run on every block;
 * a Hann window scaled to a mean of 1 keeps the amplitude of a tone that
 * falls on a bin. */
#include <math.h>
#include <stdint.h>
#include <stdio.h>
#include <zolvex_m.h>

#define N 1024               /* samples per block */
#define BINS (N / 2 + 1)     /* one-sided spectrum */
#define BLOCKS 4

int main(void) {
    static float signal[N], windowed[N], spectrum[2 * BINS], amplitude[BINS];
    void* plan = NULL;
    int failed = 0;

    zolvex_m_init();
    /* The backend is chosen now, from the options (IPP, FFTW or built in). */
    int32_t status = zolvex_m_dft_plan_create_r2c_1d_f32(windowed, N, spectrum, BINS, &plan);
    if (status != ZOLVEX_M_STATUS_SUCCESS) {
        fprintf(stderr, "plan: %s\n", zolvex_m_status_str(status));
        return 1;
    }
    for (uint64_t b = 0; b < BLOCKS && !failed; ++b) {
        /* 0.5 V at bin 50 and 0.1 V at bin 200, plus a 0.2 V offset. */
        zolvex_m_waveform_cosine_f32(signal, N, 0.5, 0.2, 50.0 / N, 0.0, b * N);
        zolvex_m_waveform_cosine_f32(windowed, N, 0.1, 0.0, 200.0 / N, 0.0, b * N);
        zolvex_m_add_f32(signal, windowed, signal, N);

        zolvex_m_window_hanning_f32(signal, windowed, N, 1);
        /* one_sided: bin 0 / n, every other bin 2 X[k] / n: amplitudes. */
        status = zolvex_m_dft_plan_execute_r2c_1d_divn_f32(plan, windowed, N, spectrum, BINS, true);
        if (status == ZOLVEX_M_STATUS_SUCCESS) status = zolvex_m_magnitude_c32f32(spectrum, amplitude, BINS);
        uint32_t peak = 0;
        float peak_amplitude = 0;
        if (status == ZOLVEX_M_STATUS_SUCCESS)
            status = zolvex_m_index_max_f32(amplitude + 1, BINS - 1, &peak, &peak_amplitude);
        if (status != ZOLVEX_M_STATUS_SUCCESS) {
            fprintf(stderr, "block %llu: %s\n", (unsigned long long)b, zolvex_m_status_str(status));
            failed = 1;
            break;
        }
        peak += 1;  /* searched from bin 1 on, past the offset */
        printf("block %llu: DC %.3f V, peak at bin %u: %.3f V, bin 200: %.3f V\n", (unsigned long long)b,
               amplitude[0], peak, peak_amplitude, amplitude[200]);
        /* The window's mean is slightly below 1 (a symmetric window of
         * n samples), hence the tolerance. */
        failed |= peak != 50 || fabsf(peak_amplitude - 0.5f) > 0.01f || fabsf(amplitude[200] - 0.1f) > 0.01f;
    }
    zolvex_m_dft_plan_destroy(plan);
    zolvex_m_fini();
    return failed;
}
