/* Trigger search across blocks: a noisy 1 kHz sine sampled at 1 MS/s
 * arrives in blocks of 768 samples, which do not line up with its periods.
 * A rising-edge trigger with hysteresis finds every period's start, also
 * where a crossing begins in one block and ends in the next. */
#include <stdint.h>
#include <stdio.h>
#include <zolvex_m.h>

#define BLOCK 768
#define BLOCKS 20
#define PERIOD 1000

int main(void) {
    float block[BLOCK];
    void* state = NULL;  /* the search's state block, allocated by the first call */
    uint32_t seed = 42;
    uint64_t triggers[BLOCKS * BLOCK / PERIOD + 1];
    int count = 0;

    zolvex_m_init();
    for (uint64_t b = 0; b < BLOCKS; ++b) {
        uint64_t start = b * BLOCK;  /* absolute index of the block's first sample */
        /* sin(2 pi k / PERIOD): a cosine a quarter cycle late. Blocks made
         * with consecutive starts join into one unbroken waveform. */
        zolvex_m_waveform_cosine_f32(block, BLOCK, 1.0, 0.0, 1.0 / PERIOD, -0.25, start);
        seed += 1;
        zolvex_m_add_noise_f32(block, BLOCK, 0.02f, -2.0f, 2.0f, &seed);

        /* Arm below -0.1, fire at the first sample at or above 0.1: the arm
         * level lies beyond the noise, so noise cannot fire it twice. */
        uint32_t position = 0;
        for (;;) {
            int32_t status = zolvex_m_trigger_edge_rising_f32(block, BLOCK, -0.1f, 0.1f, &position, &state);
            if (status != ZOLVEX_M_STATUS_SUCCESS) {
                fprintf(stderr, "trigger: %s\n", zolvex_m_status_str(status));
                return 1;
            }
            if (position == BLOCK) break;  /* block done; an armed search goes on in the next */
            triggers[count++] = start + position;
            position += 1;                 /* look for the next edge after this one */
        }
    }
    zolvex_m_state_free(&state);
    zolvex_m_fini();

    /* The sine starts at 0 going up, so the trigger arms in the first
     * period's lower half and fires near the start of each later period,
     * 0.1 / (2 pi) of a period (about 16 samples) in. */
    int failed = count != BLOCKS * BLOCK / PERIOD;
    for (int i = 0; i < count; ++i) {
        long offset = (long)(triggers[i] % PERIOD);
        printf("trigger at sample %llu (%ld into period %llu)\n", (unsigned long long)triggers[i], offset,
               (unsigned long long)(triggers[i] / PERIOD));
        failed |= offset < 10 || offset > 22;
    }
    return failed;
}
