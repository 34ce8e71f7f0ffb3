/*
 * zolvex/zolvex_core.h - processor feature queries.
 *
 * Every function is thread-safe and may be called at any time, including
 * before zolvex_core_init(): detection runs once, lazily, on first use and
 * its answer is cached for the life of the process.
 *
 * A feature is reported as present (1) only when both the processor
 * implements it and the operating system saves the register state it needs
 * (for AVX, AVX2, FMA3 and AVX-512), so a 1 means the instructions are safe
 * to execute.
 */
#ifndef ZOLVEX_CORE_H
#define ZOLVEX_CORE_H

#include <stdint.h>

#if defined(__GNUC__)
#define ZOLVEX_CORE_API __attribute__((visibility("default")))
#else
#define ZOLVEX_CORE_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Takes a reference on the library and runs detection if it has not run yet.
 * May be called any number of times; each call should be paired with
 * zolvex_core_fini(). Returns 0. */
ZOLVEX_CORE_API int32_t zolvex_core_init(void);

/* Drops a reference taken by zolvex_core_init(); a call without a matching
 * init does nothing. Cached detection results stay valid. Returns 0. */
ZOLVEX_CORE_API int32_t zolvex_core_fini(void);

/* Each returns 1 when the feature is usable, otherwise 0. */
ZOLVEX_CORE_API uint8_t zolvex_core_cpu_has_sse(void);
ZOLVEX_CORE_API uint8_t zolvex_core_cpu_has_sse2(void);
ZOLVEX_CORE_API uint8_t zolvex_core_cpu_has_sse3(void);
ZOLVEX_CORE_API uint8_t zolvex_core_cpu_has_ssse3(void);
ZOLVEX_CORE_API uint8_t zolvex_core_cpu_has_sse41(void);
ZOLVEX_CORE_API uint8_t zolvex_core_cpu_has_sse42(void);
ZOLVEX_CORE_API uint8_t zolvex_core_cpu_has_avx(void);
ZOLVEX_CORE_API uint8_t zolvex_core_cpu_has_avx2(void);
ZOLVEX_CORE_API uint8_t zolvex_core_cpu_has_avx512f(void);
ZOLVEX_CORE_API uint8_t zolvex_core_cpu_has_avx512cd(void);
ZOLVEX_CORE_API uint8_t zolvex_core_cpu_has_avx512bw(void);
ZOLVEX_CORE_API uint8_t zolvex_core_cpu_has_avx512dq(void);
ZOLVEX_CORE_API uint8_t zolvex_core_cpu_has_fma3(void);
/* Always 0 on x86; 1 on AArch64, where Advanced SIMD is mandatory. */
ZOLVEX_CORE_API uint8_t zolvex_core_cpu_has_neon(void);

#ifdef __cplusplus
}
#endif

#endif /* ZOLVEX_CORE_H */
