/*
 * libzolvex-m: vector mathematics and signal processing for sampled
 * measurement data (blocks of u8/i16/u16/f32/f64 samples).
 *
 * Conventions shared by every function of this header:
 *  - Every function returns an int32_t status code (ZOLVEX_M_STATUS_*),
 *    except where its comment says otherwise. No C++ exception ever leaves
 *    the library.
 *  - Vector functions take plain pointers and an element count (never a byte
 *    count): inputs first, then the output, then the count, then constants by
 *    value. The output may be the same array as an input (in place); arrays
 *    that overlap at other offsets are not supported.
 *  - Pointers are not tested for null unless a function says so.
 *  - A count of 0 returns 0 without touching any pointer.
 *  - Kernels are chosen from the option flags (see zolvex_m_setopt): the
 *    widest allowed instruction set wins. Every kernel gives the results of
 *    the generic (scalar) kernel bit for bit, except where a comment says a
 *    kernel rounds differently.
 *
 * Valid C99 and C++.
 */
#ifndef ZOLVEX_M_H
#define ZOLVEX_M_H

#include <stdbool.h>
#include <stdint.h>

#if defined(_WIN32)
#  if defined(ZOLVEX_M_BUILDING)
#    define ZOLVEX_M_API __declspec(dllexport)
#  else
#    define ZOLVEX_M_API __declspec(dllimport)
#  endif
#else
#  define ZOLVEX_M_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ------------------------------------------------------------------------ */
/* Status codes                                                             */
/* ------------------------------------------------------------------------ */

#define ZOLVEX_M_STATUS_SUCCESS            0
#define ZOLVEX_M_STATUS_FAILED            (-1)
#define ZOLVEX_M_STATUS_ERROR_DATA_LENGTH (-2)
#define ZOLVEX_M_STATUS_OUT_OF_MEMORY     (-3)
#define ZOLVEX_M_STATUS_INVALID_PLAN      (-4)
#define ZOLVEX_M_STATUS_NULLPTR           (-5)

/* The constant text of a status code ("Success", "Failed", "Error data
 * length", "Out of memory", "Invalid plan", "nullptr"), or NULL for any value
 * outside -5..0. The text is statically stored and never freed. */
ZOLVEX_M_API const char* zolvex_m_status_str(int32_t status);

/* Frees the state block *state (allocated by a stateful function such as a
 * trigger search) and sets *state to NULL, so a second call frees nothing.
 * state itself must not be NULL. */
ZOLVEX_M_API void zolvex_m_state_free(void** state);

/* The library's version, four 16-bit numbers in this memory order. Read it
 * field by field. */
typedef struct ZolvexMVersion {
    uint16_t major;
    uint16_t minor;
    uint16_t release;
    uint16_t build;
} ZolvexMVersion;

/* Address of the constant version record (0, 38, 5, 2): a ZolvexMVersion.
 * Needs no initialisation; always the same address. */
ZOLVEX_M_API const void* zolvex_m_get_version(void);

/* ------------------------------------------------------------------------ */
/* Initialisation and options                                               */
/* ------------------------------------------------------------------------ */

/* Option ids. Id 13 does not exist; ids are never renumbered. */
#define ZOLVEX_M_OPT_SSE        1
#define ZOLVEX_M_OPT_SSE2       2
#define ZOLVEX_M_OPT_SSE3       3
#define ZOLVEX_M_OPT_SSSE3      4
#define ZOLVEX_M_OPT_SSE41      5
#define ZOLVEX_M_OPT_SSE42      6
#define ZOLVEX_M_OPT_AVX        7
#define ZOLVEX_M_OPT_AVX2       8
#define ZOLVEX_M_OPT_NEON       9
#define ZOLVEX_M_OPT_IPP       10
#define ZOLVEX_M_OPT_FFTW3     11
#define ZOLVEX_M_OPT_FFTW3F    12
#define ZOLVEX_M_OPT_FMA3      14
#define ZOLVEX_M_OPT_AVX512F   15
#define ZOLVEX_M_OPT_AVX512BW  16
#define ZOLVEX_M_OPT_AVX512DQ  17
#define ZOLVEX_M_OPT_AVX512CD  18

/* One row of the option list; the row with id 0 (and a NULL description)
 * ends it. */
typedef struct OptionEntry {
    int32_t id;
    const char* description;
} OptionEntry;

/* Brackets all use of the library. Calls nest by reference count: only the
 * first zolvex_m_init starts the sibling libraries, loads the optional
 * accelerator, reads the processor's features into the option flags and
 * chooses the kernels; only the matching last zolvex_m_fini unloads and stops
 * them. Both return 0.
 *
 * Deliberate properties: the option flags keep their values after the last
 * zolvex_m_fini; and the count is not guarded, so a zolvex_m_fini without an
 * init wraps it to its all-ones value, after which the next zolvex_m_init
 * only brings it back to 0 without initialising. */
ZOLVEX_M_API int32_t zolvex_m_init(void);
ZOLVEX_M_API int32_t zolvex_m_fini(void);

/* Writes 1 (on) or 0 (off) into *value for a known option id and returns 0;
 * returns -1 and leaves *value untouched for an unknown id. Needs no init. */
ZOLVEX_M_API int32_t zolvex_m_getopt(int32_t id, uint32_t* value);

/* Switches an option on (value != 0) or off (value == 0); returns 0 on
 * success, -1 otherwise:
 *  - processor options switch on only if the processor (and operating
 *    system) supports the feature; otherwise the flag is left off and -1
 *    returned;
 *  - ZOLVEX_M_OPT_IPP switches on only if zolvex_m_init loaded the
 *    accelerator library (it is never loaded here);
 *  - ZOLVEX_M_OPT_FFTW3 / ZOLVEX_M_OPT_FFTW3F load their library on first
 *    use; switching them off keeps the library loaded;
 *  - unknown ids (0, 13, above 18) return -1.
 * After every successful change the kernels are chosen anew. Takes no lock:
 * changing options while other threads call the library is the caller's
 * responsibility (a running call may use the old or the new kernel). */
ZOLVEX_M_API int32_t zolvex_m_setopt(uint32_t id, int32_t value);

/* The static option list, in the order 1..8, 15, 18, 16, 17, 14, 9..12, then
 * the end row {0, NULL}. Never fails. */
ZOLVEX_M_API const OptionEntry* zolvex_m_getopt_list(void);

/* ------------------------------------------------------------------------ */
/* Element-wise arithmetic                                                  */
/* ------------------------------------------------------------------------ */
/* Each result is rounded to the element type. Division by zero, overflow and
 * NaN follow IEEE arithmetic. add, sub, mul, div, addc, subc, csub, mulc,
 * divc and cdiv have AVX and AVX-512 (F with CD) kernels with results equal
 * to the generic kernel's (a NaN result may carry another NaN payload). All return 0, except mulc/divc with the
 * ZOLVEX_M_OPT_IPP option on (then -1 if the accelerator reports an error,
 * and a count of 0 is judged by the accelerator). */

/* out[i] = x[i] + y[i], - , *, / */
ZOLVEX_M_API int32_t zolvex_m_add_f32(const float* x, const float* y, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_add_f64(const double* x, const double* y, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_sub_f32(const float* x, const float* y, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_sub_f64(const double* x, const double* y, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_mul_f32(const float* x, const float* y, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_mul_f64(const double* x, const double* y, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_div_f32(const float* x, const float* y, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_div_f64(const double* x, const double* y, double* out, uint32_t n);

/* out[i] = x[i] + c, x[i] - c, c - x[i], x[i] * c, x[i] / c, c / x[i] */
ZOLVEX_M_API int32_t zolvex_m_addc_f32(const float* x, float* out, uint32_t n, float c);
ZOLVEX_M_API int32_t zolvex_m_addc_f64(const double* x, double* out, uint32_t n, double c);
ZOLVEX_M_API int32_t zolvex_m_subc_f32(const float* x, float* out, uint32_t n, float c);
ZOLVEX_M_API int32_t zolvex_m_subc_f64(const double* x, double* out, uint32_t n, double c);
ZOLVEX_M_API int32_t zolvex_m_csub_f32(const float* x, float* out, uint32_t n, float c);
ZOLVEX_M_API int32_t zolvex_m_csub_f64(const double* x, double* out, uint32_t n, double c);
ZOLVEX_M_API int32_t zolvex_m_mulc_f32(const float* x, float* out, uint32_t n, float c);
ZOLVEX_M_API int32_t zolvex_m_mulc_f64(const double* x, double* out, uint32_t n, double c);
ZOLVEX_M_API int32_t zolvex_m_divc_f32(const float* x, float* out, uint32_t n, float c);
ZOLVEX_M_API int32_t zolvex_m_divc_f64(const double* x, double* out, uint32_t n, double c);
ZOLVEX_M_API int32_t zolvex_m_cdiv_f32(const float* x, float* out, uint32_t n, float c);
ZOLVEX_M_API int32_t zolvex_m_cdiv_f64(const double* x, double* out, uint32_t n, double c);

/* out[i] = fmod(x[i], c): the remainder with the sign of x[i]; c = 0 gives
 * NaN. */
ZOLVEX_M_API int32_t zolvex_m_modc_f32(const float* x, float* out, uint32_t n, float c);
ZOLVEX_M_API int32_t zolvex_m_modc_f64(const double* x, double* out, uint32_t n, double c);

/* out[i] = x[i] * m + a. With the AVX2 and FMA3 options both on, a fused
 * multiply-add computes it with one rounding (the last bit may then differ
 * from the other kernels, which round the product and then the sum). */
ZOLVEX_M_API int32_t zolvex_m_mulc_addc_f32(const float* x, float* out, uint32_t n, float m, float a);
ZOLVEX_M_API int32_t zolvex_m_mulc_addc_f64(const double* x, double* out, uint32_t n, double m, double a);

/* out[i] = |x[i]| (the sign bit cleared: -0.0 gives +0.0, NaN stays NaN). */
ZOLVEX_M_API int32_t zolvex_m_abs_f32(const float* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_abs_f64(const double* x, double* out, uint32_t n);

/* out[i] = value */
ZOLVEX_M_API int32_t zolvex_m_set_u8(uint8_t* out, uint32_t n, uint8_t value);
ZOLVEX_M_API int32_t zolvex_m_set_i16(int16_t* out, uint32_t n, int16_t value);
ZOLVEX_M_API int32_t zolvex_m_set_u16(uint16_t* out, uint32_t n, uint16_t value);
ZOLVEX_M_API int32_t zolvex_m_set_u32(uint32_t* out, uint32_t n, uint32_t value);
ZOLVEX_M_API int32_t zolvex_m_set_f32(float* out, uint32_t n, float value);
ZOLVEX_M_API int32_t zolvex_m_set_f64(double* out, uint32_t n, double value);

/* ------------------------------------------------------------------------ */
/* Conversions                                                              */
/* ------------------------------------------------------------------------ */
/* out[i] = x[i] converted to the output type, rounded to nearest (ties to
 * even) where the value is not exactly representable: integers wider than the
 * float's significand (i32/u32/i64/u64 to f32, i64/u64 to f64) and f64 to
 * f32. f64 values beyond the f32 range give an infinity of their sign; NaN
 * stays NaN. Every input value has a defined result. Returns 0.
 * The u8 and u16 conversions have SSE4.2, AVX, AVX2 (with FMA3) and AVX-512
 * (F with CD) kernels; all conversions are exact for those types. */
ZOLVEX_M_API int32_t zolvex_m_convert_i8f32(const int8_t* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_convert_i16f32(const int16_t* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_convert_i32f32(const int32_t* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_convert_i64f32(const int64_t* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_convert_u8f32(const uint8_t* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_convert_u16f32(const uint16_t* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_convert_u32f32(const uint32_t* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_convert_u64f32(const uint64_t* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_convert_i8f64(const int8_t* x, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_convert_i16f64(const int16_t* x, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_convert_i32f64(const int32_t* x, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_convert_i64f64(const int64_t* x, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_convert_u8f64(const uint8_t* x, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_convert_u16f64(const uint16_t* x, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_convert_u32f64(const uint32_t* x, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_convert_u64f64(const uint64_t* x, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_convert_f32f64(const float* x, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_convert_f64f32(const double* x, float* out, uint32_t n);

/* ------------------------------------------------------------------------ */
/* Shift right and clip                                                     */
/* ------------------------------------------------------------------------ */
/* out[i] = min(max(x[i] >> shift, low), high): a logical right shift, then a
 * clamp to [low, high]. A shift of the element width or more gives 0 before
 * the clamp. If low > high every element becomes high. Typical use: bring
 * raw ADC codes to a smaller range (e.g. 12-bit codes in 16-bit words to 8
 * bits) and keep them inside a display window. Returns 0.
 * Kernels: SSE4.2, and AVX2 (with FMA3). */
ZOLVEX_M_API int32_t zolvex_m_shr_clip_u8(const uint8_t* x, uint8_t* out, uint32_t n,
                                          uint32_t shift, uint8_t low, uint8_t high);
ZOLVEX_M_API int32_t zolvex_m_shr_clip_u16(const uint16_t* x, uint16_t* out, uint32_t n,
                                           uint32_t shift, uint16_t low, uint16_t high);

/* ------------------------------------------------------------------------ */
/* Search and statistics                                                    */
/* ------------------------------------------------------------------------ */
/* (min/max and sums) */

/* (linear histograms) */
/* Adds the samples of a block to a histogram of bin_count equally wide bins
 * between range_min and range_max, plus optional counters for the samples
 * below and above that range. Counters are only ever added to, never
 * cleared: zero them once, then call block after block to accumulate.
 * Naming: sample type, then counter type (i16u32: int16_t samples, uint32_t
 * counters).
 *
 * Arguments: data and length (samples); range_min and range_max (the samples'
 * own type and raw units); bins, an array of bin_count counters; below and
 * above, one counter each, or NULL to leave such samples uncounted. The
 * counters must not overlap data.
 *
 * Which bin: a sample x with range_min <= x <= range_max (both limits
 * inside) goes into bin k = (x - range_min) / w, truncated toward zero, with
 * w = (range_max - range_min) / bin_count computed in double (the
 * differences exactly: in integers for the integer types, in double for f32
 * and f64). A k of bin_count or more is taken as the last bin, so a sample
 * equal to range_max lands in bin bin_count - 1. x < range_min counts in
 * *below, x > range_max in *above.
 *  - range_max == range_min (w = 0): samples equal to the limit go into
 *    bin 0.
 *  - range_min > range_max: every sample is below or above.
 *  - f32/f64: a quotient that is NaN or beyond the 64-bit integer range
 *    gives bin 0. So a NaN sample (neither below nor above) counts in bin 0;
 *    so does every sample in range when the width is infinite
 *    (range_max - range_min beyond the largest double) or rounds to 0. A NaN
 *    limit compares false with every sample: samples not outside the other
 *    limit count in bin 0.
 *  - bin_count == 0: nothing is written to bins (it may be NULL); samples in
 *    the range are not counted anywhere, samples outside still go to
 *    *below / *above.
 *
 * Counters wrap around on overflow (a uint16_t bin at 65535 becomes 0);
 * there is no saturation. Use wider counters for long accumulations.
 *
 * Returns the number of samples of this block that were counted somewhere:
 * put into a bin, or into *below / *above when those are given (length when
 * both are given and bin_count > 0). It is a count, not a status; length 0
 * returns 0 without touching anything. No pointer is tested for null except
 * below and above.
 *
 * Speed: every path gives exactly the counts of the rule above applied
 * sample by sample. u8 counts how often each value occurs (blocks of 256
 * samples or more) and adds those counts to the bins. i16 and u16 have
 * AVX-512 (F with CD) kernels, else AVX2 kernels (AVX2 and FMA3 options
 * on), for bin_count up to 2^27: they find the bins by integer
 * multiplication for nearly every range and bin count (the others in double,
 * dividing only near whole quotients), and count a flat signal per bin.
 * Otherwise, and for f32 and f64, the rule runs sample by sample. */
ZOLVEX_M_API uint32_t zolvex_m_histogram_lin_1d_i16u16(const int16_t* data, uint32_t length,
    int16_t range_min, int16_t range_max, uint16_t* bins, uint32_t bin_count, uint16_t* below, uint16_t* above);
ZOLVEX_M_API uint32_t zolvex_m_histogram_lin_1d_i16u32(const int16_t* data, uint32_t length,
    int16_t range_min, int16_t range_max, uint32_t* bins, uint32_t bin_count, uint32_t* below, uint32_t* above);
ZOLVEX_M_API uint32_t zolvex_m_histogram_lin_1d_i16u64(const int16_t* data, uint32_t length,
    int16_t range_min, int16_t range_max, uint64_t* bins, uint32_t bin_count, uint64_t* below, uint64_t* above);
ZOLVEX_M_API uint32_t zolvex_m_histogram_lin_1d_u8u16(const uint8_t* data, uint32_t length,
    uint8_t range_min, uint8_t range_max, uint16_t* bins, uint32_t bin_count, uint16_t* below, uint16_t* above);
ZOLVEX_M_API uint32_t zolvex_m_histogram_lin_1d_u8u32(const uint8_t* data, uint32_t length,
    uint8_t range_min, uint8_t range_max, uint32_t* bins, uint32_t bin_count, uint32_t* below, uint32_t* above);
ZOLVEX_M_API uint32_t zolvex_m_histogram_lin_1d_u8u64(const uint8_t* data, uint32_t length,
    uint8_t range_min, uint8_t range_max, uint64_t* bins, uint32_t bin_count, uint64_t* below, uint64_t* above);
ZOLVEX_M_API uint32_t zolvex_m_histogram_lin_1d_u16u16(const uint16_t* data, uint32_t length,
    uint16_t range_min, uint16_t range_max, uint16_t* bins, uint32_t bin_count, uint16_t* below, uint16_t* above);
ZOLVEX_M_API uint32_t zolvex_m_histogram_lin_1d_u16u32(const uint16_t* data, uint32_t length,
    uint16_t range_min, uint16_t range_max, uint32_t* bins, uint32_t bin_count, uint32_t* below, uint32_t* above);
ZOLVEX_M_API uint32_t zolvex_m_histogram_lin_1d_u16u64(const uint16_t* data, uint32_t length,
    uint16_t range_min, uint16_t range_max, uint64_t* bins, uint32_t bin_count, uint64_t* below, uint64_t* above);
ZOLVEX_M_API uint32_t zolvex_m_histogram_lin_1d_f32u16(const float* data, uint32_t length,
    float range_min, float range_max, uint16_t* bins, uint32_t bin_count, uint16_t* below, uint16_t* above);
ZOLVEX_M_API uint32_t zolvex_m_histogram_lin_1d_f32u32(const float* data, uint32_t length,
    float range_min, float range_max, uint32_t* bins, uint32_t bin_count, uint32_t* below, uint32_t* above);
ZOLVEX_M_API uint32_t zolvex_m_histogram_lin_1d_f32u64(const float* data, uint32_t length,
    float range_min, float range_max, uint64_t* bins, uint32_t bin_count, uint64_t* below, uint64_t* above);
ZOLVEX_M_API uint32_t zolvex_m_histogram_lin_1d_f64u16(const double* data, uint32_t length,
    double range_min, double range_max, uint16_t* bins, uint32_t bin_count, uint16_t* below, uint16_t* above);
ZOLVEX_M_API uint32_t zolvex_m_histogram_lin_1d_f64u32(const double* data, uint32_t length,
    double range_min, double range_max, uint32_t* bins, uint32_t bin_count, uint32_t* below, uint32_t* above);
ZOLVEX_M_API uint32_t zolvex_m_histogram_lin_1d_f64u64(const double* data, uint32_t length,
    double range_min, double range_max, uint64_t* bins, uint32_t bin_count, uint64_t* below, uint64_t* above);

/* ------------------------------------------------------------------------ */
/* Trigger detection                                                        */
/* ------------------------------------------------------------------------ */
/* Edge triggers find where a signal crosses a level, in a stream that
 * arrives block by block: a search may start in one block and end in a later
 * one. Levels are in the samples' own type and raw units (u8 levels for u8
 * data); nothing is scaled.
 *
 * Hysteresis: a trigger must first be armed by the signal on the far side
 * of the arm level, and fires only when it then reaches the trigger level.
 * Rising: arms on a sample strictly below arm_level, then waits for a sample
 * at or above arm_level, then fires on the first sample at or above
 * trigger_level. Falling is the mirror image (arms strictly above arm_level,
 * then waits for <= arm_level, fires on <= trigger_level). Any: arms when
 * the signal leaves [arm_level_low, arm_level_high] (strictly above or
 * strictly below; a sample that is both arms high), then fires on the way
 * back through trigger_level: at or below it after arming high, at or above
 * it after arming low. Put the arm level a noise margin beyond the trigger
 * level (rising: arm_level < trigger_level) so that noise on a flat signal
 * cannot re-arm a trigger. Consequences:
 *  - A sample equal to the arm level does not arm; a sample equal to the
 *    trigger level fires. With arm_level == trigger_level, a rising edge
 *    fires on the first sample at or above that level after a sample below
 *    it. The levels are not checked for order: with the arm level beyond the
 *    trigger level (rising: arm_level > trigger_level), the trigger fires at
 *    the first sample at or above arm_level after arming.
 *  - Once armed, a trigger is never disarmed: the signal may cross back over
 *    the arm level any number of times; only the trigger resets it.
 *  - f32/f64: a NaN sample never arms and never fires; it is passed over.
 *
 * Calling convention (the same for every trigger function):
 *  - state: the address of a void* that holds the search's state block. Set
 *    it to NULL before the first call; the first call allocates the block
 *    (zero-filled: a new search) and stores its address there, even when it
 *    does nothing else. You own the block and release it with
 *    zolvex_m_state_free(state). Pass a block only to the function (kind,
 *    sample type and levels) that created it. One block must not be used by
 *    two threads at once; different blocks may be used in parallel.
 *  - *position: on entry the index where the search starts; on return with
 *    status 0, the index of the trigger sample (below length) if the search
 *    fired, or length if the block ran out first. A trigger leaves the state
 *    block ready for a new search.
 *  - Next trigger in the same block: call again with *position advanced
 *    (typically trigger index + 1). Calling with the trigger index itself
 *    restarts the search at that sample, which cannot fire again at once.
 *  - Next block: when *position came back equal to length, set it to 0 and
 *    call with the next block and the same state: an armed search goes on
 *    where it stopped.
 *  - *position >= length on entry (a length of 0 included): returns 0 at
 *    once, leaving *position and the state block as they are (a new block is
 *    still allocated when *state was NULL).
 *  - Returns 0 (ZOLVEX_M_STATUS_SUCCESS); -1 (ZOLVEX_M_STATUS_FAILED),
 *    writing nothing, when the state block holds no valid state of this kind
 *    (a block from another kind, or overwritten); -3
 *    (ZOLVEX_M_STATUS_OUT_OF_MEMORY) when the block cannot be allocated, in
 *    which case *state stays NULL and *position is untouched.
 *  - data, position and state are not tested for null.
 * Kernels: the u8 searches use AVX2 when the AVX2 and FMA3 options are both
 * on, else SSE4.2 when that option is on; the u16 searches use SSE4.2 for
 * every scan except the one for "at or above a level" (rising after
 * arming, any after arming low), which uses AVX2 when the AVX2 and FMA3
 * options are both on. i16, f32 and f64 are generic. All give the generic
 * kernels' results. */
ZOLVEX_M_API int32_t zolvex_m_trigger_edge_rising_u8(const uint8_t* data, uint32_t length, uint8_t arm_level,
    uint8_t trigger_level, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_edge_falling_u8(const uint8_t* data, uint32_t length, uint8_t arm_level,
    uint8_t trigger_level, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_edge_any_u8(const uint8_t* data, uint32_t length, uint8_t arm_level_high,
    uint8_t arm_level_low, uint8_t trigger_level, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_edge_rising_i16(const int16_t* data, uint32_t length, int16_t arm_level,
    int16_t trigger_level, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_edge_falling_i16(const int16_t* data, uint32_t length, int16_t arm_level,
    int16_t trigger_level, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_edge_any_i16(const int16_t* data, uint32_t length, int16_t arm_level_high,
    int16_t arm_level_low, int16_t trigger_level, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_edge_rising_u16(const uint16_t* data, uint32_t length, uint16_t arm_level,
    uint16_t trigger_level, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_edge_falling_u16(const uint16_t* data, uint32_t length, uint16_t arm_level,
    uint16_t trigger_level, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_edge_any_u16(const uint16_t* data, uint32_t length, uint16_t arm_level_high,
    uint16_t arm_level_low, uint16_t trigger_level, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_edge_rising_f32(const float* data, uint32_t length, float arm_level,
    float trigger_level, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_edge_falling_f32(const float* data, uint32_t length, float arm_level,
    float trigger_level, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_edge_any_f32(const float* data, uint32_t length, float arm_level_high,
    float arm_level_low, float trigger_level, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_edge_rising_f64(const double* data, uint32_t length, double arm_level,
    double trigger_level, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_edge_falling_f64(const double* data, uint32_t length, double arm_level,
    double trigger_level, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_edge_any_f64(const double* data, uint32_t length, double arm_level_high,
    double arm_level_low, double trigger_level, uint32_t* position, void** state);

#ifdef __cplusplus
}
#endif

#endif /* ZOLVEX_M_H */
