/**
 * @file zolvex_m.h
 * @brief libzolvex-m: vector mathematics and signal processing for sampled
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
 * Threads:
 *  - zolvex_m_init and zolvex_m_fini may be called from any threads, also
 *    at once: a lock serialises them, and only the outermost pair starts
 *    and stops anything. Do not call zolvex_m_fini while other threads are
 *    still inside the library (it unloads the optional libraries and stops
 *    the thread pool).
 *  - The plain vector functions (arithmetic, conversions, statistics,
 *    generation, elementary functions, de-interleaving) keep no state
 *    between calls: any number of threads may call them at once, on
 *    different output arrays. Functions with a state block, a plan or a
 *    filter state say in their section what may be shared.
 *  - zolvex_m_setopt takes no lock: change options while no other thread is
 *    inside the library.
 *
 * Before zolvex_m_init: every function that needs neither an optional
 * library nor the thread pool works, with the generic kernels (all option
 * flags start off); work that would go to the thread pool runs on the
 * calling thread. zolvex_m_init switches on the kernels the processor
 * allows and loads the accelerator, so call it first in a program that
 * wants speed.
 *
 * Alignment: no function requires aligned arrays; every kernel reads and
 * writes any address of its element type. Alignment buys speed only: with
 * arrays on 64-byte boundaries (aligned_alloc(64, ...)) no vector access
 * straddles two cache lines, which matters most for the AVX-512 kernels on
 * long blocks. The transforms' FFTW plans are the exception that needs
 * care: an FFTW plan runs only on buffers of the alignment class it was
 * planned with (zolvex_m_dft_alignment_of).
 *
 * Valid C99 and C++.
 */
#ifndef ZOLVEX_M_H
#define ZOLVEX_M_H

#include <stdbool.h>
#include <stdint.h>

/** Marks the library's exported functions (symbol visibility). */
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
/**
 * @defgroup status_codes Status codes
 * @{
 */

#define ZOLVEX_M_STATUS_SUCCESS            0 /**< The call did its work. */
#define ZOLVEX_M_STATUS_FAILED            (-1) /**< An argument or state was refused, or a backend failed. */
#define ZOLVEX_M_STATUS_ERROR_DATA_LENGTH (-2) /**< A length the function cannot take. */
#define ZOLVEX_M_STATUS_OUT_OF_MEMORY     (-3) /**< Memory could not be had. */
#define ZOLVEX_M_STATUS_INVALID_PLAN      (-4) /**< A plan that does not fit the call. */
#define ZOLVEX_M_STATUS_NULLPTR           (-5) /**< A pointer the function tests was NULL. */

/** The constant text of a status code ("Success", "Failed", "Error data
 * length", "Out of memory", "Invalid plan", "nullptr"), or NULL for any value
 * outside -5..0. The text is statically stored and never freed. */
ZOLVEX_M_API const char* zolvex_m_status_str(int32_t status);

/** Frees the state block *state (allocated by a stateful function such as a
 * trigger search) and sets *state to NULL, so a second call frees nothing.
 * state itself must not be NULL. */
ZOLVEX_M_API void zolvex_m_state_free(void** state);

/** @name ZOLVEX_M_VERSION_* */
/** @{ */
/** The library's version; the build reads it from these four lines. */
#define ZOLVEX_M_VERSION_MAJOR 0
#define ZOLVEX_M_VERSION_MINOR 38
#define ZOLVEX_M_VERSION_RELEASE 5
#define ZOLVEX_M_VERSION_BUILD 2
/** @} */

/** The version as zolvex_m_get_version hands it out: four 16-bit numbers in
 * this memory order. Read it field by field. */
typedef struct ZolvexMVersion {
    uint16_t major;  /**< ZOLVEX_M_VERSION_MAJOR */
    uint16_t minor;  /**< ZOLVEX_M_VERSION_MINOR */
    uint16_t release; /**< ZOLVEX_M_VERSION_RELEASE */
    uint16_t build;  /**< ZOLVEX_M_VERSION_BUILD */
} ZolvexMVersion;

/** Address of the constant version record (the ZOLVEX_M_VERSION_* numbers):
 * a ZolvexMVersion.
 * Needs no initialisation; always the same address. */
ZOLVEX_M_API const void* zolvex_m_get_version(void);

/** The version record with its type: zolvex_m_get_version's address as a
 * ZolvexMVersion. Defined here, not exported. */
static inline const ZolvexMVersion* zolvex_m_version_record(void) {
    return (const ZolvexMVersion*)zolvex_m_get_version();
}

/** @} */

/* ------------------------------------------------------------------------ */
/**
 * @defgroup initialisation_and_options Initialisation and options
 * @{
 */

/** @name ZOLVEX_M_OPT_* */
/** @{ */
/** Option ids. Id 13 does not exist; ids are never renumbered. */
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
/** @} */

/** One row of the option list; the row with id 0 (and a NULL description)
 * ends it. */
typedef struct OptionEntry {
    int32_t id;             /**< The option id (ZOLVEX_M_OPT_*), 0 in the end row. */
    const char* description; /**< Constant text naming the option, NULL in the end row. */
} OptionEntry;

/** The option-list row under this library's prefix, for programs that have
 * a type of their own called OptionEntry (the unprefixed name stays). */
typedef OptionEntry ZolvexMOptionEntry;

/** @name init, fini */
/** @{ */
/** Brackets all use of the library. Calls nest by reference count: only the
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
/** @} */

/** Writes 1 (on) or 0 (off) into *value for a known option id and returns 0;
 * returns -1 and leaves *value untouched for an unknown id. Needs no init. */
ZOLVEX_M_API int32_t zolvex_m_getopt(int32_t id, uint32_t* value);

/** Switches an option on (value != 0) or off (value == 0); returns 0 on
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

/** The static option list, in the order 1..8, 15, 18, 16, 17, 14, 9..12, then
 * the end row {0, NULL}. Never fails. */
ZOLVEX_M_API const OptionEntry* zolvex_m_getopt_list(void);

/** @} */

/* ------------------------------------------------------------------------ */
/**
 * @defgroup element_wise_arithmetic Element-wise arithmetic
 *
 * Each result is rounded to the element type. Division by zero, overflow and
 * NaN follow IEEE arithmetic. add, sub, mul, div, addc, subc, csub, mulc,
 * divc and cdiv have AVX and AVX-512 (F with CD) kernels with results equal
 * to the generic kernel's (a NaN result may carry another NaN payload). All return 0, except mulc/divc with the
 * ZOLVEX_M_OPT_IPP option on (then -1 if the accelerator reports an error,
 * and a count of 0 is judged by the accelerator).
 * @{
 */

/** @name add, sub, mul, div */
/** @{ */
/** out[i] = x[i] + y[i], - , *, / */
ZOLVEX_M_API int32_t zolvex_m_add_f32(const float* x, const float* y, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_add_f64(const double* x, const double* y, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_sub_f32(const float* x, const float* y, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_sub_f64(const double* x, const double* y, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_mul_f32(const float* x, const float* y, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_mul_f64(const double* x, const double* y, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_div_f32(const float* x, const float* y, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_div_f64(const double* x, const double* y, double* out, uint32_t n);
/** @} */

/** @name addc, subc, csub, mulc, ... */
/** @{ */
/** out[i] = x[i] + c, x[i] - c, c - x[i], x[i] * c, x[i] / c, c / x[i] */
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
/** @} */

/** @name modc */
/** @{ */
/** out[i] = fmod(x[i], c): the remainder with the sign of x[i]; c = 0 gives
 * NaN. */
ZOLVEX_M_API int32_t zolvex_m_modc_f32(const float* x, float* out, uint32_t n, float c);
ZOLVEX_M_API int32_t zolvex_m_modc_f64(const double* x, double* out, uint32_t n, double c);
/** @} */

/** @name mulc_addc */
/** @{ */
/** out[i] = x[i] * m + a. With the AVX2 and FMA3 options both on, a fused
 * multiply-add computes it with one rounding (the last bit may then differ
 * from the other kernels, which round the product and then the sum). */
ZOLVEX_M_API int32_t zolvex_m_mulc_addc_f32(const float* x, float* out, uint32_t n, float m, float a);
ZOLVEX_M_API int32_t zolvex_m_mulc_addc_f64(const double* x, double* out, uint32_t n, double m, double a);
/** @} */

/** @name abs */
/** @{ */
/** out[i] = |x[i]| (the sign bit cleared: -0.0 gives +0.0, NaN stays NaN). */
ZOLVEX_M_API int32_t zolvex_m_abs_f32(const float* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_abs_f64(const double* x, double* out, uint32_t n);
/** @} */

/** @name set */
/** @{ */
/** out[i] = value */
ZOLVEX_M_API int32_t zolvex_m_set_u8(uint8_t* out, uint32_t n, uint8_t value);
ZOLVEX_M_API int32_t zolvex_m_set_i16(int16_t* out, uint32_t n, int16_t value);
ZOLVEX_M_API int32_t zolvex_m_set_u16(uint16_t* out, uint32_t n, uint16_t value);
ZOLVEX_M_API int32_t zolvex_m_set_u32(uint32_t* out, uint32_t n, uint32_t value);
ZOLVEX_M_API int32_t zolvex_m_set_f32(float* out, uint32_t n, float value);
ZOLVEX_M_API int32_t zolvex_m_set_f64(double* out, uint32_t n, double value);
/** @} */

/** @} */

/* ------------------------------------------------------------------------ */
/**
 * @defgroup conversions Conversions
 * @{
 */
/** @name convert */
/** @{ */
/** out[i] = x[i] converted to the output type, rounded to nearest (ties to
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
/** @} */

/** @} */

/* ------------------------------------------------------------------------ */
/**
 * @defgroup shift_right_and_clip Shift right and clip
 * @{
 */
/** @name shr_clip */
/** @{ */
/** out[i] = min(max(x[i] >> shift, low), high): a logical right shift, then a
 * clamp to [low, high]. A shift of the element width or more gives 0 before
 * the clamp. If low > high every element becomes high. Typical use: bring
 * raw ADC codes to a smaller range (e.g. 12-bit codes in 16-bit words to 8
 * bits) and keep them inside a display window. Returns 0.
 * Kernels: SSE4.2, and AVX2 (with FMA3). */
ZOLVEX_M_API int32_t zolvex_m_shr_clip_u8(const uint8_t* x, uint8_t* out, uint32_t n,
                                          uint32_t shift, uint8_t low, uint8_t high);
ZOLVEX_M_API int32_t zolvex_m_shr_clip_u16(const uint16_t* x, uint16_t* out, uint32_t n,
                                           uint32_t shift, uint16_t low, uint16_t high);
/** @} */

/** @} */

/* ------------------------------------------------------------------------ */
/**
 * @defgroup search_and_statistics Search and statistics
 *
 * (min/max and sums)
 * @{
 */
/** @name minmax */
/** @{ */
/** Block statistics: the smallest and largest sample, the sum and the sum of
 * squares. data and the result pointers of the sums are not tested for
 * null; the min/max result pointers may be NULL.
 *
 * zolvex_m_minmax_*: writes the smallest sample of data[0..length) to *min
 * and the largest to *max, each only where the pointer is not NULL (with one
 * of them NULL only the other extreme is computed).
 *  - Integers compare with their type's signedness: the bytes 0x80, 0x7F
 *    give -128 and 127 as i8, 127 and 128 as u8.
 *  - f32/f64 follow one rule in sample order: the running minimum m becomes
 *    the sample x unless x > m, the running maximum M becomes x unless
 *    M > x. So a NaN sample replaces both and the next sample replaces them
 *    again: the results are the extremes of the samples after the last NaN,
 *    or that NaN (both) when the last sample is NaN ({1, NaN, 5, 2} gives
 *    min 2, max 5). Of equal samples the later one counts, which shows only
 *    with zeros: {-0.0, +0.0} gives +0.0 for both.
 *  - Returns 0. Both pointers NULL: returns 0 without reading data. length 0
 *    (a block without samples has no extremes): returns
 *    ZOLVEX_M_STATUS_ERROR_DATA_LENGTH and reads and writes nothing.
 *  - Kernels for u8, i16, u16, f32, f64: SSE4.2, AVX2 (with FMA3) and
 *    AVX-512 (F with CD, and BW for u8, i16, u16), each with the results of
 *    the rule above in every case, NaN and signed zeros included. The other
 *    types use the rule as written.
 *  - ZOLVEX_M_OPT_IPP on (u8, i16, u16, f32, f64 only; this comes before
 *    everything above): the accelerator computes both extremes, reading the
 *    data even when both pointers are NULL. For data without NaN its values
 *    are those of the rule; with NaN samples they are its own. Its status
 *    decides: any error or warning (length 0 included) returns
 *    ZOLVEX_M_STATUS_FAILED and writes nothing. */
ZOLVEX_M_API int32_t zolvex_m_minmax_i8(const int8_t* data, uint32_t length, int8_t* min, int8_t* max);
ZOLVEX_M_API int32_t zolvex_m_minmax_i16(const int16_t* data, uint32_t length, int16_t* min, int16_t* max);
ZOLVEX_M_API int32_t zolvex_m_minmax_i32(const int32_t* data, uint32_t length, int32_t* min, int32_t* max);
ZOLVEX_M_API int32_t zolvex_m_minmax_i64(const int64_t* data, uint32_t length, int64_t* min, int64_t* max);
ZOLVEX_M_API int32_t zolvex_m_minmax_u8(const uint8_t* data, uint32_t length, uint8_t* min, uint8_t* max);
ZOLVEX_M_API int32_t zolvex_m_minmax_u16(const uint16_t* data, uint32_t length, uint16_t* min, uint16_t* max);
ZOLVEX_M_API int32_t zolvex_m_minmax_u32(const uint32_t* data, uint32_t length, uint32_t* min, uint32_t* max);
ZOLVEX_M_API int32_t zolvex_m_minmax_u64(const uint64_t* data, uint32_t length, uint64_t* min, uint64_t* max);
ZOLVEX_M_API int32_t zolvex_m_minmax_f32(const float* data, uint32_t length, float* min, float* max);
ZOLVEX_M_API int32_t zolvex_m_minmax_f64(const double* data, uint32_t length, double* min, double* max);
/** @} */

/** @name sum */
/** @{ */
/** The sums add to the value already at *sum: set it to 0 before the first
 * block of a record and call once per block to get the record's total.
 *
 * zolvex_m_sum_u8, _u16, _u32, _i16: *sum += the sum of the samples widened
 * to 64 bits (i16 sign-extended), modulo 2^64 (an i16 sum of {-1} added to
 * 0 gives -1). Exact, so every kernel gives the same total: SSE4.2, AVX2
 * (with FMA3), AVX-512 (F with CD, and BW for u8, u16, i16). length 0
 * leaves *sum as it is. Returns 0. */
ZOLVEX_M_API int32_t zolvex_m_sum_u8(const uint8_t* data, uint32_t length, uint64_t* sum);
ZOLVEX_M_API int32_t zolvex_m_sum_u16(const uint16_t* data, uint32_t length, uint64_t* sum);
ZOLVEX_M_API int32_t zolvex_m_sum_u32(const uint32_t* data, uint32_t length, uint64_t* sum);
ZOLVEX_M_API int32_t zolvex_m_sum_i16(const int16_t* data, uint32_t length, int64_t* sum);
/** @} */

/** @name sum, square_sum */
/** @{ */
/** zolvex_m_sum_f32: the samples added in order in double precision, then
 * *sum added and the total stored rounded to float ({2.0} added to 1.0
 * gives 3.0). zolvex_m_square_sum_f32: the squares (exact in double) added
 * in order in double precision, then *sum (a double) added. One kernel
 * each. length 0 adds 0.0 (so *sum stays, except that -0.0 becomes +0.0).
 * Return 0. */
ZOLVEX_M_API int32_t zolvex_m_sum_f32(const float* data, uint32_t length, float* sum);
ZOLVEX_M_API int32_t zolvex_m_square_sum_f32(const float* data, uint32_t length, double* sum);
/** @} */

/** @name sum, square_sum */
/** @{ */
/** zolvex_m_sum_f64, zolvex_m_square_sum_f64: *sum plus the samples (or
 * their squares x * x, each rounded before it is added), in an order that
 * depends on the options, so the last bits of the result do too (the same
 * options and data always give the same bits):
 *  - ZOLVEX_M_OPT_IPP on: the accelerator's sum (or its dot product of the
 *    data with itself) added to *sum; any error or warning it reports
 *    (length 0 included) returns ZOLVEX_M_STATUS_FAILED with *sum
 *    untouched;
 *  - else ZOLVEX_M_OPT_AVX on: four partial sums, partial k (k = 0..3)
 *    taking the samples i with i % 4 == k in order, over the largest
 *    multiple of 4 samples; then the remaining 0 to 3 samples are added one
 *    by one to *sum, then the four partial sums in the order k = 0..3;
 *  - else ZOLVEX_M_OPT_SSE42 on: the same with sixteen partial sums
 *    (i % 16 == k) and 0 to 15 remaining samples;
 *  - else: the samples in order from the first into an accumulator starting
 *    at 0.0, then *sum added.
 * Without the accelerator length 0 adds 0.0 as above. Return 0 except as
 * said for the accelerator. */
ZOLVEX_M_API int32_t zolvex_m_sum_f64(const double* data, uint32_t length, double* sum);
ZOLVEX_M_API int32_t zolvex_m_square_sum_f64(const double* data, uint32_t length, double* sum);
/** @} */

/** (linear histograms) */
/** @name histogram_lin_1d */
/** @{ */
/** Adds the samples of a block to a histogram of bin_count equally wide bins
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
/** @} */

/** (index search) */
/** @name index_gt, index_gte, index_lt, index_lte, ... */
/** @{ */
/** Index searches: from a start index, the first sample of one block that
 * meets a level condition, or the index of the block's extreme sample.
 * Stateless relatives of the triggers below. Levels and values have the
 * samples' own type and raw units. Every function returns 0
 * (ZOLVEX_M_STATUS_SUCCESS); data, index and value are not tested for null.
 *
 * *index: on entry the first index to examine; on return the index found, or
 * length when no sample qualifies. A start at or beyond length writes length
 * back, also for a length of 0 (unlike the rule at the top of this header,
 * *index is written then). To find the next hit in the same block, call
 * again with *index one past the last hit.
 *
 * Conditions, each sample x from *index on:
 *   gt   x > level              gte  x >= level
 *   lt   x < level              lte  x <= level
 *   in   level_low <= x <= level_high (both levels inside; with level_high
 *        below level_low no sample is inside)
 *   out  x > level_high or x < level_low (both levels inside the band, so not
 *        out; with level_high below level_low every sample is out)
 * f32/f64: a NaN sample meets no condition, and a NaN level is never
 * reached (gt, gte, lt, lte and in then find nothing; out tests only its
 * other level). -0.0 and +0.0 are equal.
 * Kernels: the u8 and u16 searches scan with AVX2 when the AVX2 and FMA3
 * options are both on, else with SSE4.2 when that option is on. i16, f32
 * and f64 are generic.
 * All give the generic kernels' index. These are the trigger searches' scans:
 * whole groups of 64 samples are tested at once, so a hit far from the start
 * costs little.
 *
 * max / min: *value holds on entry the extreme to beat. A sample counts only
 * when strictly above (max) or strictly below (min) the best so far, which
 * starts at *value: ties keep the first index, and a sample equal to the
 * entry value is not reported. On return *index is the index of the extreme
 * sample and *value that sample; or, when no sample from *index on beat the
 * entry value, *index is length and *value is untouched (also for a start at
 * or beyond length).
 *  - One block on its own: seed *value with the type's lowest value for max
 *    (0, INT16_MIN, -INFINITY) or its highest for min (UINT8_MAX, INT16_MAX,
 *    UINT16_MAX, INFINITY). A block whose samples all equal the seed reports
 *    length.
 *  - Several blocks: seed once, then pass the same *value with every block
 *    (*index set to 0); a block that returns an index below its length holds
 *    a new extreme, one that returns length does not. The last block to
 *    report holds the first occurrence of the extreme of the whole stream.
 *  - f32/f64: a NaN sample never wins; a NaN in *value is never beaten (the
 *    result is length), so never seed with NaN.
 * Scalar for every type. */
ZOLVEX_M_API int32_t zolvex_m_index_gt_u8(const uint8_t* data, uint32_t length, uint8_t level, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_gte_u8(const uint8_t* data, uint32_t length, uint8_t level, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_lt_u8(const uint8_t* data, uint32_t length, uint8_t level, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_lte_u8(const uint8_t* data, uint32_t length, uint8_t level, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_in_u8(const uint8_t* data, uint32_t length, uint8_t level_high,
    uint8_t level_low, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_out_u8(const uint8_t* data, uint32_t length, uint8_t level_high,
    uint8_t level_low, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_max_u8(const uint8_t* data, uint32_t length, uint32_t* index, uint8_t* value);
ZOLVEX_M_API int32_t zolvex_m_index_min_u8(const uint8_t* data, uint32_t length, uint32_t* index, uint8_t* value);
ZOLVEX_M_API int32_t zolvex_m_index_gt_i16(const int16_t* data, uint32_t length, int16_t level, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_gte_i16(const int16_t* data, uint32_t length, int16_t level, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_lt_i16(const int16_t* data, uint32_t length, int16_t level, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_lte_i16(const int16_t* data, uint32_t length, int16_t level, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_in_i16(const int16_t* data, uint32_t length, int16_t level_high,
    int16_t level_low, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_out_i16(const int16_t* data, uint32_t length, int16_t level_high,
    int16_t level_low, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_max_i16(const int16_t* data, uint32_t length, uint32_t* index, int16_t* value);
ZOLVEX_M_API int32_t zolvex_m_index_min_i16(const int16_t* data, uint32_t length, uint32_t* index, int16_t* value);
ZOLVEX_M_API int32_t zolvex_m_index_gt_u16(const uint16_t* data, uint32_t length, uint16_t level, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_gte_u16(const uint16_t* data, uint32_t length, uint16_t level, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_lt_u16(const uint16_t* data, uint32_t length, uint16_t level, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_lte_u16(const uint16_t* data, uint32_t length, uint16_t level, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_in_u16(const uint16_t* data, uint32_t length, uint16_t level_high,
    uint16_t level_low, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_out_u16(const uint16_t* data, uint32_t length, uint16_t level_high,
    uint16_t level_low, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_max_u16(const uint16_t* data, uint32_t length, uint32_t* index, uint16_t* value);
ZOLVEX_M_API int32_t zolvex_m_index_min_u16(const uint16_t* data, uint32_t length, uint32_t* index, uint16_t* value);
ZOLVEX_M_API int32_t zolvex_m_index_gt_f32(const float* data, uint32_t length, float level, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_gte_f32(const float* data, uint32_t length, float level, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_lt_f32(const float* data, uint32_t length, float level, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_lte_f32(const float* data, uint32_t length, float level, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_in_f32(const float* data, uint32_t length, float level_high,
    float level_low, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_out_f32(const float* data, uint32_t length, float level_high,
    float level_low, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_max_f32(const float* data, uint32_t length, uint32_t* index, float* value);
ZOLVEX_M_API int32_t zolvex_m_index_min_f32(const float* data, uint32_t length, uint32_t* index, float* value);
ZOLVEX_M_API int32_t zolvex_m_index_gt_f64(const double* data, uint32_t length, double level, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_gte_f64(const double* data, uint32_t length, double level, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_lt_f64(const double* data, uint32_t length, double level, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_lte_f64(const double* data, uint32_t length, double level, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_in_f64(const double* data, uint32_t length, double level_high,
    double level_low, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_out_f64(const double* data, uint32_t length, double level_high,
    double level_low, uint32_t* index);
ZOLVEX_M_API int32_t zolvex_m_index_max_f64(const double* data, uint32_t length, uint32_t* index, double* value);
ZOLVEX_M_API int32_t zolvex_m_index_min_f64(const double* data, uint32_t length, uint32_t* index, double* value);
/** @} */

/** @} */

/* ------------------------------------------------------------------------ */
/**
 * @defgroup trigger_detection Trigger detection
 * @{
 */
/** @name trigger_edge_rising, trigger_edge_falling, trigger_edge_any */
/** @{ */
/** Edge triggers find where a signal crosses a level, in a stream that
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
 *    writing nothing, when a word of the state block lies outside the range
 *    this kind ever stores (an overwritten block). A state is checked for its
 *    range only, not for the kind that made it: a block of another kind
 *    whose words are in range is taken as a state of this kind (the first
 *    word of a runt trigger's block is a valid edge state, for one). -3
 *    (ZOLVEX_M_STATUS_OUT_OF_MEMORY) when the block cannot be allocated, in
 *    which case *state stays NULL and *position is untouched.
 *  - data, position and state are not tested for null.
 * Kernels: the u8 and u16 searches scan with AVX2 when the AVX2 and FMA3
 * options are both on, else with SSE4.2 when that option is on. i16, f32
 * and f64 are generic. All give the generic kernels' results. */
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
/** @} */

/* ------------------------------------------------------------------------ */
/** @name trigger_window_inside, trigger_window_outside, trigger_window_enter, trigger_window_exit */
/** @{ */
/** Window triggers: the signal against a band [level_low, level_high]; both
 * levels belong to the window. Same calling convention as the edge triggers
 * (except outside, which keeps no state); levels are not checked for order.
 *  - inside: fires on the first sample inside the window. The sample at
 *    *position is looked at first: if it is inside already (or, for f32/f64,
 *    NaN) the search fires right there, leaving *position unchanged.
 *    Otherwise the search waits on the side the signal is on: from above it
 *    fires on the first sample <= level_high, from below on the first sample
 *    >= level_low, even if that sample jumped right across the window.
 *    States 0 to 2.
 *  - outside (stateless): *position becomes the index of the first sample at
 *    or after *position that is > level_high or < level_low (a NaN is never
 *    outside), or length. Unlike the other triggers it also writes length
 *    when *position >= length on entry. Call again with *position + 1 for the
 *    next outside sample.
 *  - enter: fires when the signal comes into the window from beyond an arm
 *    level: arms on a sample > arm_level_high (then waits for a sample
 *    <= arm_level_high, and fires on the first <= level_high) or
 *    < arm_level_low (then waits for >= arm_level_low, fires on the first
 *    >= level_low). Put the arm levels outside the window: arm_level_high
 *    above level_high, arm_level_low below level_low. States 0 to 4.
 *  - exit: fires on the first sample outside the window (> level_high or
 *    < level_low) once armed by a sample in [arm_level_low, arm_level_high]
 *    (put the arm levels inside the window). Only the sample at *position of
 *    a new search arms directly; a signal that starts anywhere else must first
 *    leave the window and come back within the arm levels: from above to
 *    <= arm_level_high, from below to >= arm_level_low. States 0 to 3.
 * For f32/f64 a NaN sample satisfies no condition, except where inside looks
 * at its first sample. Returns 0, -1 for a state block holding no state of
 * the kind, -3 when the block cannot be allocated.
 * Kernels: as for the edge triggers (u8 and u16 vector scans). */

ZOLVEX_M_API int32_t zolvex_m_trigger_window_inside_u8(const uint8_t* data, uint32_t length,
    uint8_t level_high, uint8_t level_low, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_window_outside_u8(const uint8_t* data, uint32_t length,
    uint8_t level_high, uint8_t level_low, uint32_t* position);
ZOLVEX_M_API int32_t zolvex_m_trigger_window_enter_u8(const uint8_t* data, uint32_t length,
    uint8_t arm_level_high, uint8_t level_high, uint8_t arm_level_low, uint8_t level_low,
    uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_window_exit_u8(const uint8_t* data, uint32_t length,
    uint8_t arm_level_high, uint8_t level_high, uint8_t arm_level_low, uint8_t level_low,
    uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_window_inside_i16(const int16_t* data, uint32_t length,
    int16_t level_high, int16_t level_low, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_window_outside_i16(const int16_t* data, uint32_t length,
    int16_t level_high, int16_t level_low, uint32_t* position);
ZOLVEX_M_API int32_t zolvex_m_trigger_window_enter_i16(const int16_t* data, uint32_t length,
    int16_t arm_level_high, int16_t level_high, int16_t arm_level_low, int16_t level_low,
    uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_window_exit_i16(const int16_t* data, uint32_t length,
    int16_t arm_level_high, int16_t level_high, int16_t arm_level_low, int16_t level_low,
    uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_window_inside_u16(const uint16_t* data, uint32_t length,
    uint16_t level_high, uint16_t level_low, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_window_outside_u16(const uint16_t* data, uint32_t length,
    uint16_t level_high, uint16_t level_low, uint32_t* position);
ZOLVEX_M_API int32_t zolvex_m_trigger_window_enter_u16(const uint16_t* data, uint32_t length,
    uint16_t arm_level_high, uint16_t level_high, uint16_t arm_level_low, uint16_t level_low,
    uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_window_exit_u16(const uint16_t* data, uint32_t length,
    uint16_t arm_level_high, uint16_t level_high, uint16_t arm_level_low, uint16_t level_low,
    uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_window_inside_f32(const float* data, uint32_t length,
    float level_high, float level_low, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_window_outside_f32(const float* data, uint32_t length,
    float level_high, float level_low, uint32_t* position);
ZOLVEX_M_API int32_t zolvex_m_trigger_window_enter_f32(const float* data, uint32_t length,
    float arm_level_high, float level_high, float arm_level_low, float level_low,
    uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_window_exit_f32(const float* data, uint32_t length,
    float arm_level_high, float level_high, float arm_level_low, float level_low,
    uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_window_inside_f64(const double* data, uint32_t length,
    double level_high, double level_low, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_window_outside_f64(const double* data, uint32_t length,
    double level_high, double level_low, uint32_t* position);
ZOLVEX_M_API int32_t zolvex_m_trigger_window_enter_f64(const double* data, uint32_t length,
    double arm_level_high, double level_high, double arm_level_low, double level_low,
    uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_window_exit_f64(const double* data, uint32_t length,
    double arm_level_high, double level_high, double arm_level_low, double level_low,
    uint32_t* position, void** state);
/** @} */

/* ------------------------------------------------------------------------ */
/** @name ZOLVEX_M_DURATION_* */
/** @{ */
/** The duration modes of the pulse-width, interval and runt triggers:
 * what a duration d must satisfy against time_min and time_max for the
 * trigger to fire. Any other value, negative ones included: never. */
#define ZOLVEX_M_DURATION_ANY     0 /**< always */
#define ZOLVEX_M_DURATION_SHORTER 1 /**< d < time_min */
#define ZOLVEX_M_DURATION_LONGER  2 /**< d > time_min (time_min, not time_max) */
#define ZOLVEX_M_DURATION_INSIDE  3 /**< time_min <= d <= time_max */
#define ZOLVEX_M_DURATION_OUTSIDE 4 /**< d < time_min or d > time_max */
/** @} */

/** @name trigger_pulse_width_positive, trigger_pulse_width_negative, trigger_interval_positive, trigger_interval_negative */
/** @{ */
/** Pulse-width and interval triggers: measure a duration in samples and fire
 * when it satisfies `mode` against time_min and time_max:
 *   0  always                     3  time_min <= d <= time_max
 *   1  d < time_min               4  d < time_min or d > time_max
 *   2  d > time_min (time_min, not time_max)
 *   any other value, negative ones included: never (ZOLVEX_M_DURATION_*).
 * Durations and limits are unsigned 32-bit; a duration of 2^32 samples or
 * more wraps. The limits are not checked for order.
 *  - pulse_width_positive: a pulse rises from <= level_low to >= level_high
 *    (where it starts) and falls back to <= level_low (where it ends and d is
 *    its width, end index minus start index). The search first waits for
 *    the signal at or below level_low. A pulse that satisfies the mode fires
 *    at its end sample. After a trigger, or a rejected pulse, the search
 *    waits for the next pulse to start: it needs no re-arming.
 *    pulse_width_negative is the mirror image: from >= level_high down to
 *    <= level_low and back to >= level_high.
 *    With level_high <= level_low one sample can start and end a pulse of
 *    width 0; if the mode rejects it, the search goes on at the next sample
 *    (rather than measuring the same pulse at that sample for ever).
 *  - interval_positive: d is the number of samples between two consecutive
 *    rising edges (armed strictly below level_low, firing at the first
 *    sample >= level_high, as zolvex_m_trigger_edge_rising with
 *    arm_level = level_low and trigger_level = level_high). The first edge
 *    of a search starts the measurement; every later edge measures from the
 *    previous one, fires at the edge if the mode accepts d, and starts the
 *    next interval either way. interval_negative uses falling edges (armed
 *    strictly above level_high, firing at the first sample <= level_low).
 * State block (zero-filled when allocated; read it only for diagnostics):
 *   struct { uint32_t state; uint32_t phase; int64_t start; }
 * state is the pulse state (0 to 2) or the edge state (0 to 2); phase is 0
 * for pulse widths and, for intervals, 1 once the first edge was seen; start
 * is where the running duration began, relative to the block passed next:
 * every call that returns without a trigger, the early return included,
 * subtracts length from it. So feed blocks exactly as for the edge triggers
 * and durations span blocks. Returns 0, -1 (nothing written) for a block
 * whose state or phase is out of range, -3 when the block cannot be
 * allocated.
 * Kernels: the pulse-width searches scan u8 and u16 data with the edge
 * triggers' vector scans; the intervals run the edge searches. */

ZOLVEX_M_API int32_t zolvex_m_trigger_pulse_width_positive_u8(const uint8_t* data, uint32_t length,
    uint8_t level_high, uint8_t level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_pulse_width_negative_u8(const uint8_t* data, uint32_t length,
    uint8_t level_high, uint8_t level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_interval_positive_u8(const uint8_t* data, uint32_t length,
    uint8_t level_high, uint8_t level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_interval_negative_u8(const uint8_t* data, uint32_t length,
    uint8_t level_high, uint8_t level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_pulse_width_positive_i16(const int16_t* data, uint32_t length,
    int16_t level_high, int16_t level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_pulse_width_negative_i16(const int16_t* data, uint32_t length,
    int16_t level_high, int16_t level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_interval_positive_i16(const int16_t* data, uint32_t length,
    int16_t level_high, int16_t level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_interval_negative_i16(const int16_t* data, uint32_t length,
    int16_t level_high, int16_t level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_pulse_width_positive_u16(const uint16_t* data, uint32_t length,
    uint16_t level_high, uint16_t level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_pulse_width_negative_u16(const uint16_t* data, uint32_t length,
    uint16_t level_high, uint16_t level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_interval_positive_u16(const uint16_t* data, uint32_t length,
    uint16_t level_high, uint16_t level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_interval_negative_u16(const uint16_t* data, uint32_t length,
    uint16_t level_high, uint16_t level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_pulse_width_positive_f32(const float* data, uint32_t length,
    float level_high, float level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_pulse_width_negative_f32(const float* data, uint32_t length,
    float level_high, float level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_interval_positive_f32(const float* data, uint32_t length,
    float level_high, float level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_interval_negative_f32(const float* data, uint32_t length,
    float level_high, float level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_pulse_width_positive_f64(const double* data, uint32_t length,
    double level_high, double level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_pulse_width_negative_f64(const double* data, uint32_t length,
    double level_high, double level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_interval_positive_f64(const double* data, uint32_t length,
    double level_high, double level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_interval_negative_f64(const double* data, uint32_t length,
    double level_high, double level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
/** @} */

/* ------------------------------------------------------------------------ */
/** @name trigger_runt_pulse_positive, trigger_runt_pulse_negative, trigger_runt_pulse_any */
/** @{ */
/** Runt-pulse triggers. A runt crosses one level of the window
 * [level_low, level_high] (both levels inside) and turns back before it
 * reaches the other: a positive runt comes up from below level_low into the
 * window and falls back below level_low without going above level_high; a
 * negative runt comes down from above level_high and goes back above it
 * without going below level_low. Its width d is the index of the first
 * sample outside the window after the runt minus the index of the first
 * sample inside it; `mode`, time_min and time_max qualify it exactly as for
 * the pulse-width triggers. A qualifying runt fires at that first sample
 * outside the window (positive: runts of positive polarity only; negative:
 * negative only; any: both). A signal that enters on one side and leaves on
 * the other never fires. The search first waits for the signal outside the
 * window; after a trigger it is outside again, ready for the next runt.
 * How the signal comes back inside: from above at the first sample
 * <= level_high, from below at the first sample >= level_low; a sample that
 * jumps across the whole window counts as now being on the other side. For
 * f32/f64 a NaN sample is never outside the window and never counts as
 * coming inside.
 * State block (zero-filled when allocated; read it only for diagnostics):
 *   struct { uint32_t entered_from; uint32_t state; uint32_t inner_state;
 *            int64_t start; }
 * entered_from: 0 none yet, 2 from above, 3 from below, 1 after a
 * qualifying runt; state: 0 idle, 1 inside, 2 above, 3 below; inner_state:
 * the state (0 to 2) of the search for the way back into the window; start:
 * where the signal entered, relative to the block passed next (reduced by
 * length at every return without a trigger, the early return included).
 * Calling convention as for the edge triggers. Returns 0, -1 (nothing
 * written) for a block whose state or inner_state is out of range, -3 when
 * the block cannot be allocated.
 * Kernels: the edge triggers' vector scans for u8 and u16 data. */

ZOLVEX_M_API int32_t zolvex_m_trigger_runt_pulse_positive_u8(const uint8_t* data, uint32_t length,
    uint8_t level_high, uint8_t level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_runt_pulse_negative_u8(const uint8_t* data, uint32_t length,
    uint8_t level_high, uint8_t level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_runt_pulse_any_u8(const uint8_t* data, uint32_t length,
    uint8_t level_high, uint8_t level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_runt_pulse_positive_i16(const int16_t* data, uint32_t length,
    int16_t level_high, int16_t level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_runt_pulse_negative_i16(const int16_t* data, uint32_t length,
    int16_t level_high, int16_t level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_runt_pulse_any_i16(const int16_t* data, uint32_t length,
    int16_t level_high, int16_t level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_runt_pulse_positive_u16(const uint16_t* data, uint32_t length,
    uint16_t level_high, uint16_t level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_runt_pulse_negative_u16(const uint16_t* data, uint32_t length,
    uint16_t level_high, uint16_t level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_runt_pulse_any_u16(const uint16_t* data, uint32_t length,
    uint16_t level_high, uint16_t level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_runt_pulse_positive_f32(const float* data, uint32_t length,
    float level_high, float level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_runt_pulse_negative_f32(const float* data, uint32_t length,
    float level_high, float level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_runt_pulse_any_f32(const float* data, uint32_t length,
    float level_high, float level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_runt_pulse_positive_f64(const double* data, uint32_t length,
    double level_high, double level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_runt_pulse_negative_f64(const double* data, uint32_t length,
    double level_high, double level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
ZOLVEX_M_API int32_t zolvex_m_trigger_runt_pulse_any_f64(const double* data, uint32_t length,
    double level_high, double level_low, int32_t mode, uint32_t time_min,
    uint32_t time_max, uint32_t* position, void** state);
/** @} */

/** @} */

/* ------------------------------------------------------------------------ */
/**
 * @defgroup signal_generation_noise Signal generation: noise
 *
 * Uniform pseudo-random noise, reproducible from a seed. Each call builds its
 * own generator: MT19937 with std::mt19937's parameters, seeded with *seed,
 * or, when seed is NULL, with one value of the platform's non-deterministic
 * source (std::random_device), so that two such calls differ. No state
 * survives a call; calls may run on any threads at once.
 *
 * Real variates use two engine outputs d1, d2 per sample:
 * u = (d1 + d2 * 2^32) * 2^-64, rounded to double, u >= 1 replaced by the
 * largest double below 1, so u lies in [0, 1)
 * (`std::uniform_real_distribution<double>` over std::generate_canonical on
 * a 32-bit engine; the f32 forms use
 * this double variate too). Integer variates follow
 * std::uniform_int_distribution for a 32-bit engine: with range
 * r = max - min + 1 (bounds widened to 32 bits: u8 and u16 zero-extended, i16
 * sign-extended; r taken modulo 2^32), a draw d gives p = d * r (64 bits); if
 * the low 32 bits of p are below (2^32 - r) mod r the draw is rejected and
 * another taken; the sample is min + (p >> 32), stored modulo the type's
 * width. r = 0 (max = min - 1 modulo 2^32) uses the draw as it is. Reversed
 * bounds (min > max) therefore wrap as this unsigned arithmetic does.
 *
 * Samples are the same bit for bit on every kernel level (generic, AVX2,
 * AVX-512F; the twist, the tempering and the variates run in vectors) and
 * equal those of std::mt19937 with libstdc++'s distributions. Example: seed
 * 5489, f64, min 0, max 1: the first sample is 0.1354770042967805.
 * All return 0 (also for count 0, which touches nothing), or -1 when the
 * random device fails (seed NULL only).
 * @{
 */

/** @name waveform_noise */
/** @{ */
/** out[i] = min + u * (max - min) in double (f32: rounded to float once), in
 * [min, max) (max itself only through that rounding); min > max mirrors the
 * interval. Integers: uniform in [min, max], both included. */
ZOLVEX_M_API int32_t zolvex_m_waveform_noise_u8(uint8_t* out, uint32_t count, uint8_t min, uint8_t max,
    const uint32_t* seed);
ZOLVEX_M_API int32_t zolvex_m_waveform_noise_i16(int16_t* out, uint32_t count, int16_t min, int16_t max,
    const uint32_t* seed);
ZOLVEX_M_API int32_t zolvex_m_waveform_noise_u16(uint16_t* out, uint32_t count, uint16_t min, uint16_t max,
    const uint32_t* seed);
ZOLVEX_M_API int32_t zolvex_m_waveform_noise_f32(float* out, uint32_t count, float min, float max,
    const uint32_t* seed);
ZOLVEX_M_API int32_t zolvex_m_waveform_noise_f64(double* out, uint32_t count, double min, double max,
    const uint32_t* seed);
/** @} */

/** @name add_noise */
/** @{ */
/** data[i] = clip(data[i] + n), n = u * (a - (-a)) + (-a) uniform in [-a, a)
 * (a = amplitude), computed in double for every type: values below low give
 * low, otherwise values above high give high (so low > high gives low or
 * high only); a NaN sample stays NaN. f32 rounds the clipped double once;
 * the integer types round it half away from zero (llround). The bounds are
 * the caller's, not the type's: pass the type's full range to only keep
 * values representable. */
ZOLVEX_M_API int32_t zolvex_m_add_noise_u8(uint8_t* data, uint32_t count, uint8_t amplitude, uint8_t low,
    uint8_t high, const uint32_t* seed);
ZOLVEX_M_API int32_t zolvex_m_add_noise_i16(int16_t* data, uint32_t count, int16_t amplitude, int16_t low,
    int16_t high, const uint32_t* seed);
ZOLVEX_M_API int32_t zolvex_m_add_noise_u16(uint16_t* data, uint32_t count, uint16_t amplitude, uint16_t low,
    uint16_t high, const uint32_t* seed);
ZOLVEX_M_API int32_t zolvex_m_add_noise_f32(float* data, uint32_t count, float amplitude, float low,
    float high, const uint32_t* seed);
ZOLVEX_M_API int32_t zolvex_m_add_noise_f64(double* data, uint32_t count, double amplitude, double low,
    double high, const uint32_t* seed);
/** @} */

/** @} */

/* ------------------------------------------------------------------------ */
/**
 * @defgroup signal_generation_window_functions Signal generation: window functions
 * @{
 */
/** @name window_hanning, window_hamming, window_blackman, window_nuttall, ... */
/** @{ */
/** out[i] = in[i] * w(i) * factor, factor = the window's amplitude correction
 * (1 / its mean) when `scale` is non-zero, else 1. Symmetric windows over
 * D = n - 1: w(0) = w(n - 1), and in general w(i) = w(D - i) bit for bit.
 * out may equal in. n = 0 returns 0 and touches nothing; n = 1 writes NaN
 * (the window of one sample is 0 / 0). Returns 0, or -1 on the accelerator
 * path (below).
 *
 * Cosine sums w(i) = a0 - a1 cos(2 pi i/D) + a2 cos(4 pi i/D) - a3 cos(6 pi
 * i/D) + a4 cos(8 pi i/D), coefficients as double constants:
 *   hanning          0.5, 0.5                                factor 2
 *   hamming          0.54, 0.46                              1 / 0.54
 *   blackman         0.42, 0.5, 0.08                         1 / 0.42
 *   nuttall          0.355768, 0.487396, 0.144232, 0.012604  1 / 0.355768
 *   blackmanharris   0.35875, 0.48829, 0.14128, 0.01168      1 / 0.35875
 *   blackmannuttall  0.3635819, 0.4891775, 0.1365995, 0.0106411  1 / 0.3635819
 *   flattop          0.21557895, 0.41663158, 0.277263158, 0.083578947,
 *                    0.006947368                             4.638671818375588
 * The f32 forms use the single-precision factors 2.0, 1.85185182,
 * 2.38095236, 2.81082058, 2.78745651, 2.75041199 and 4.638671818375588f.
 * They are evaluated as a polynomial in s = sin^2(pi j / D),
 * j = min(i, D - i), with the factor folded in (the same function: cos(2 pi
 * k i / D) = T_k(1 - 2s)), so the values near the ends keep their relative
 * accuracy; s comes from a table of 64 angles and the angle-addition rule,
 * whose terms never cancel. Accuracy against in[i] * w(i) * factor
 * evaluated exactly with these constants: f32 results are correctly rounded
 * but for cases within 2^-24 ulp of a tie; f64 results are within 5 ulp
 * (here: relative error 5 * 2^-52, likewise below) for
 * hanning and hamming, 9 ulp for blackman and 13 ulp for nuttall,
 * blackmanharris and blackmannuttall (s is within about 3 ulp, and the
 * window's slope magnifies that error; most values are within 2 ulp), and
 * within 2^-48 * factor * |in[i]| in absolute terms for flattop, whose
 * values change sign. Every kernel level (generic SSE2,
 * AVX2, AVX-512F) gives the same bits.
 *
 * Other windows, with h = D / 2 and y = 1 - |i - h| / h = min(i, D - i) / h:
 *   bartlett  triangle 1 - |i - h| / h = y (one rounding); factor 2
 *   gaussian  exp(-0.5 ((i - h) / (sigma h))^2), sigma = 0.4 (alpha = 2.5);
 *             factor 1 / (sigma sqrt(pi) sqrt(0.5) erf(sqrt(0.5) / sigma)),
 *             about 2.0198, the reciprocal of its continuous mean
 *   parzen    1 - 6 x^2 + 6 x^3 for x = |i - h| / h <= 1/2, else 2 (1 - x)^3
 *             (zero at both ends); factor 8/3
 *   welch     1 - ((i - h) / h)^2, evaluated as written in double, with the
 *             factor 1.5: ((1 - r^2) * factor) * in[i]; always on the calling
 *             thread
 * Gaussian and Parzen evaluate w * factor in long double and round it once,
 * Bartlett in double: then out = in[i] * that, so f64 results are within
 * relative 2^-52, f32 results correctly rounded but for rare near-ties.
 *
 * Threads: blocks of 4096 samples and more (gaussian) or 65536 (bartlett,
 * parzen, and the cosine sums on machines with more than two processors:
 * they compute one weight per mirror pair, a saving two halves of a block
 * cannot share) are cut into one piece of consecutive samples per
 * processor the standard library reports, run on the thread pool and
 * joined before the call returns; welch always runs on the calling thread.
 * The values never depend on the split. Calls may run on any threads at
 * once.
 *
 * Accelerator: with ZOLVEX_M_OPT_IPP on, hanning, hamming, blackman and
 * bartlett hand the block to IPP (ippsWinHann, ippsWinHamming,
 * ippsWinBlackmanStd, ippsWinBartlett; the in-place form when out == in)
 * and, with `scale`, multiply by the same factor (ippsMulC, in place). IPP
 * rejects n below 3 and above INT32_MAX: those calls then return -1. Its
 * values differ from the built-in ones by up to about max(2^-40, n^2 2^-61)
 * (f64) or max(2^-21, n^2 2^-59) (f32) times |in[i]| * factor: its error
 * grows with the square of n (about 2^-22 for f64 at n = 2^20). */
ZOLVEX_M_API int32_t zolvex_m_window_hanning_f32(const float* in, float* out, uint32_t n, uint8_t scale);
ZOLVEX_M_API int32_t zolvex_m_window_hanning_f64(const double* in, double* out, uint32_t n, uint8_t scale);
ZOLVEX_M_API int32_t zolvex_m_window_hamming_f32(const float* in, float* out, uint32_t n, uint8_t scale);
ZOLVEX_M_API int32_t zolvex_m_window_hamming_f64(const double* in, double* out, uint32_t n, uint8_t scale);
ZOLVEX_M_API int32_t zolvex_m_window_blackman_f32(const float* in, float* out, uint32_t n, uint8_t scale);
ZOLVEX_M_API int32_t zolvex_m_window_blackman_f64(const double* in, double* out, uint32_t n, uint8_t scale);
ZOLVEX_M_API int32_t zolvex_m_window_nuttall_f32(const float* in, float* out, uint32_t n, uint8_t scale);
ZOLVEX_M_API int32_t zolvex_m_window_nuttall_f64(const double* in, double* out, uint32_t n, uint8_t scale);
ZOLVEX_M_API int32_t zolvex_m_window_blackmanharris_f32(const float* in, float* out, uint32_t n, uint8_t scale);
ZOLVEX_M_API int32_t zolvex_m_window_blackmanharris_f64(const double* in, double* out, uint32_t n, uint8_t scale);
ZOLVEX_M_API int32_t zolvex_m_window_blackmannuttall_f32(const float* in, float* out, uint32_t n, uint8_t scale);
ZOLVEX_M_API int32_t zolvex_m_window_blackmannuttall_f64(const double* in, double* out, uint32_t n, uint8_t scale);
ZOLVEX_M_API int32_t zolvex_m_window_flattop_f32(const float* in, float* out, uint32_t n, uint8_t scale);
ZOLVEX_M_API int32_t zolvex_m_window_flattop_f64(const double* in, double* out, uint32_t n, uint8_t scale);
ZOLVEX_M_API int32_t zolvex_m_window_welch_f32(const float* in, float* out, uint32_t n, uint8_t scale);
ZOLVEX_M_API int32_t zolvex_m_window_welch_f64(const double* in, double* out, uint32_t n, uint8_t scale);
ZOLVEX_M_API int32_t zolvex_m_window_bartlett_f32(const float* in, float* out, uint32_t n, uint8_t scale);
ZOLVEX_M_API int32_t zolvex_m_window_bartlett_f64(const double* in, double* out, uint32_t n, uint8_t scale);
ZOLVEX_M_API int32_t zolvex_m_window_gaussian_f32(const float* in, float* out, uint32_t n, uint8_t scale);
ZOLVEX_M_API int32_t zolvex_m_window_gaussian_f64(const double* in, double* out, uint32_t n, uint8_t scale);
ZOLVEX_M_API int32_t zolvex_m_window_parzen_f32(const float* in, float* out, uint32_t n, uint8_t scale);
ZOLVEX_M_API int32_t zolvex_m_window_parzen_f64(const double* in, double* out, uint32_t n, uint8_t scale);
/** @} */

/** @} */

/* ------------------------------------------------------------------------ */
/**
 * @defgroup signal_generation_periodic_waveforms Signal generation: periodic waveforms
 * @{
 */
/** @name waveform_cosine, waveform_square, waveform_triangle */
/** @{ */
/** out[i] = offset + amplitude * shape(t), t = frac(phase + frequency * k)
 * for the absolute sample index k = start + i (modulo 2^64): frequency in
 * cycles per sample, phase in cycles (0.25 = a quarter period), both any
 * finite value (a negative frequency runs backwards; only their fractional
 * parts matter). t is computed in exact 128-bit fixed point (frequency and
 * phase to 2^-128 of a cycle), so a block generated with start = s and the
 * next one with start = s + count join into one unbroken waveform, and the
 * phase of sample 2^32 or 2^60 is as exact as that of sample 1.
 *   cosine    shape = cos(2 pi t): +1 at t = 0; f64 values within
 *             4 * 2^-53 * |amplitude| of the exact value, plus the rounding
 *             of offset + amplitude * shape
 *   square    shape = +1 for t in [0, duty), -1 for t in [duty, 1): duty 0
 *             gives all low, duty 1 all high
 *   triangle  shape = |4t - 2| - 1 (exact): +1 at t = 0, -1 at t = 1/2,
 *             straight lines between
 * The value is computed in double; f32 rounds it once; the integer types
 * clip it to the type's range and round half away from zero (llround).
 * Returns 0 (count 0: at once, nothing checked or written), or -1 with
 * nothing written when amplitude, offset, frequency or phase is not finite
 * or duty is not within [0, 1] (NaN included). Blocks of 4096 samples and
 * more (cosine) or 65536 (square, triangle) are split over the thread pool
 * as for the windows. */
ZOLVEX_M_API int32_t zolvex_m_waveform_cosine_u8(uint8_t* out, uint32_t count, double amplitude,
    double offset, double frequency, double phase, uint64_t start);
ZOLVEX_M_API int32_t zolvex_m_waveform_square_u8(uint8_t* out, uint32_t count, double amplitude,
    double offset, double frequency, double phase, double duty, uint64_t start);
ZOLVEX_M_API int32_t zolvex_m_waveform_triangle_u8(uint8_t* out, uint32_t count, double amplitude,
    double offset, double frequency, double phase, uint64_t start);
ZOLVEX_M_API int32_t zolvex_m_waveform_cosine_i16(int16_t* out, uint32_t count, double amplitude,
    double offset, double frequency, double phase, uint64_t start);
ZOLVEX_M_API int32_t zolvex_m_waveform_square_i16(int16_t* out, uint32_t count, double amplitude,
    double offset, double frequency, double phase, double duty, uint64_t start);
ZOLVEX_M_API int32_t zolvex_m_waveform_triangle_i16(int16_t* out, uint32_t count, double amplitude,
    double offset, double frequency, double phase, uint64_t start);
ZOLVEX_M_API int32_t zolvex_m_waveform_cosine_u16(uint16_t* out, uint32_t count, double amplitude,
    double offset, double frequency, double phase, uint64_t start);
ZOLVEX_M_API int32_t zolvex_m_waveform_square_u16(uint16_t* out, uint32_t count, double amplitude,
    double offset, double frequency, double phase, double duty, uint64_t start);
ZOLVEX_M_API int32_t zolvex_m_waveform_triangle_u16(uint16_t* out, uint32_t count, double amplitude,
    double offset, double frequency, double phase, uint64_t start);
ZOLVEX_M_API int32_t zolvex_m_waveform_cosine_f32(float* out, uint32_t count, double amplitude,
    double offset, double frequency, double phase, uint64_t start);
ZOLVEX_M_API int32_t zolvex_m_waveform_square_f32(float* out, uint32_t count, double amplitude,
    double offset, double frequency, double phase, double duty, uint64_t start);
ZOLVEX_M_API int32_t zolvex_m_waveform_triangle_f32(float* out, uint32_t count, double amplitude,
    double offset, double frequency, double phase, uint64_t start);
ZOLVEX_M_API int32_t zolvex_m_waveform_cosine_f64(double* out, uint32_t count, double amplitude,
    double offset, double frequency, double phase, uint64_t start);
ZOLVEX_M_API int32_t zolvex_m_waveform_square_f64(double* out, uint32_t count, double amplitude,
    double offset, double frequency, double phase, double duty, uint64_t start);
ZOLVEX_M_API int32_t zolvex_m_waveform_triangle_f64(double* out, uint32_t count, double amplitude,
    double offset, double frequency, double phase, uint64_t start);
/** @} */

/** @} */

/* ------------------------------------------------------------------------ */
/**
 * @defgroup elementary_functions Elementary functions
 *
 * out[i] = f(x[i]) for the functions of C's <math.h> (and two of this
 * library's own: pow2, logn; plus magnitude, sincos and unwrap below).
 * Conventions as for the arithmetic: inputs, then outputs, then the count,
 * then constants; any output may be an input array; a count of 0 returns 0
 * without touching any pointer; pointers are not tested for null. All return
 * 0. Thread-safe: they keep no state (unwrap's state is the caller's).
 *
 * Accuracy: every result is within 1 ulp of the exact value (sqrt, pow2,
 * hypot, magnitude and logn within 0.5 ulp plus a hair), for every input,
 * subnormal inputs and results included. The kernels call the SLEEF vector
 * maths library's 1.0-ulp functions (0.5 ulp for hypot). Where SLEEF 3.5
 * misses that bound (erf, atan2, hypot and magnitude with results within
 * 2^digits of the smallest normal number; sinh and cosh within a few units
 * of overflow; asinh and acosh of arguments beyond the square root of the
 * largest value; pow overflowing for finite operands), those elements are
 * computed one at a time in x87 extended precision and rounded once, which
 * is slower; tiny arguments (x^2 < 2^-digits) of tan, sinh, tanh, asinh and
 * atanh give x, within 1/3 ulp. Special values (+-0, +-inf, NaN, domain
 * edges, poles) are those of C99 Annex F: e.g. sin(-0) = -0, log(0) = -inf,
 * log(-1) = NaN, pow(x, 0) = 1 even for NaN x, pow(-inf, -3) = -0,
 * hypot(inf, NaN) = inf, atan2(+-0, -0) = +-pi. Floating-point exception
 * flags and errno are not set as <math.h> would set them. A NaN result may
 * carry any NaN payload and sign.
 *
 * Kernels: generic (SSE2), SSE4.2, AVX, AVX2 (with FMA3), AVX-512 (F with
 * CD), for every function but logn_f64 and unwrap (one kernel each).
 * Last-bit rule: the generic, SSE4.2 and AVX kernels give identical results
 * (SLEEF's deterministic family without fused multiply-add); the AVX2 and
 * AVX-512 kernels use its fused family, about twice as fast, and give
 * identical results to each other, which may differ from the first group's
 * in the last bit (both within the bound above). sqrt, pow2, logn_f64 and
 * unwrap give identical results on every level.
 * @{
 */

/** @name sin, cos, tan, asin, ... */
/** @{ */
/** sin, cos, tan (radians; arguments of any size are reduced exactly),
 * asin, acos, atan, sinh, cosh, tanh, asinh, acosh, atanh. */
ZOLVEX_M_API int32_t zolvex_m_sin_f32(const float* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_sin_f64(const double* x, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_cos_f32(const float* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_cos_f64(const double* x, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_tan_f32(const float* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_tan_f64(const double* x, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_asin_f32(const float* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_asin_f64(const double* x, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_acos_f32(const float* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_acos_f64(const double* x, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_atan_f32(const float* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_atan_f64(const double* x, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_sinh_f32(const float* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_sinh_f64(const double* x, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_cosh_f32(const float* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_cosh_f64(const double* x, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_tanh_f32(const float* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_tanh_f64(const double* x, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_asinh_f32(const float* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_asinh_f64(const double* x, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_acosh_f32(const float* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_acosh_f64(const double* x, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_atanh_f32(const float* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_atanh_f64(const double* x, double* out, uint32_t n);
/** @} */

/** @name exp, exp2, log, log2, ... */
/** @{ */
/** exp (e^x), exp2 (2^x), log (natural), log2, log10, sqrt, cbrt, erf. */
ZOLVEX_M_API int32_t zolvex_m_exp_f32(const float* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_exp_f64(const double* x, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_exp2_f32(const float* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_exp2_f64(const double* x, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_log_f32(const float* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_log_f64(const double* x, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_log2_f32(const float* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_log2_f64(const double* x, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_log10_f32(const float* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_log10_f64(const double* x, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_sqrt_f32(const float* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_sqrt_f64(const double* x, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_cbrt_f32(const float* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_cbrt_f64(const double* x, double* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_erf_f32(const float* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_erf_f64(const double* x, double* out, uint32_t n);
/** @} */

/** @name pow2 */
/** @{ */
/** out[i] = x[i] * x[i], the square (the partner of exp2, which is 2^x):
 * one correctly rounded multiplication, with the kernels of zolvex_m_mul. */
ZOLVEX_M_API int32_t zolvex_m_pow2_f32(const float* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_pow2_f64(const double* x, double* out, uint32_t n);
/** @} */

/** @name logn */
/** @{ */
/** out[i] = log(x[i]) / log(base), the logarithm to a base given once per
 * call. Computed with more precision than the element type (f32: double
 * precision, f64: the x87 extended format, one element at a time, slower
 * than log), then rounded once; special values are those of that quotient
 * of two natural logarithms with IEEE division: base 1 gives +-inf (NaN for
 * x = 1), a base of 0 gives +-0 (NaN for x = 0 or inf), a base below 0
 * or NaN gives NaN,
 * x = base gives 1 (finite base > 0, != 1). */
ZOLVEX_M_API int32_t zolvex_m_logn_f32(const float* x, float* out, uint32_t n, float base);
ZOLVEX_M_API int32_t zolvex_m_logn_f64(const double* x, double* out, uint32_t n, double base);
/** @} */

/** @name pow */
/** @{ */
/** out[i] = pow(x[i], y[i]), x to the power y. */
ZOLVEX_M_API int32_t zolvex_m_pow_f32(const float* x, const float* y, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_pow_f64(const double* x, const double* y, double* out, uint32_t n);
/** @} */
/** @name hypot */
/** @{ */
/** out[i] = hypot(x[i], y[i]) = sqrt(x^2 + y^2) without overflow or
 * underflow on the way. */
ZOLVEX_M_API int32_t zolvex_m_hypot_f32(const float* x, const float* y, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_hypot_f64(const double* x, const double* y, double* out, uint32_t n);
/** @} */
/** @name atan2 */
/** @{ */
/** out[i] = atan2(y[i], x[i]), the angle of the point (x, y) in [-pi, pi];
 * y comes first, as in C. */
ZOLVEX_M_API int32_t zolvex_m_atan2_f32(const float* y, const float* x, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_atan2_f64(const double* y, const double* x, double* out, uint32_t n);
/** @} */

/** @name magnitude */
/** @{ */
/** out[i] = |z[i]| = hypot(re, im) of n interleaved complex values
 * z[2i] (real part), z[2i + 1] (imaginary part); z holds 2n elements.
 * out may be z (the results then fill its first n elements). */
ZOLVEX_M_API int32_t zolvex_m_magnitude_c32f32(const float* z, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_magnitude_c64f64(const double* z, double* out, uint32_t n);
/** @} */

/** @name sincos */
/** @{ */
/** sin_out[i] = sin(x[i]), cos_out[i] = cos(x[i]), the values sin and cos
 * give, in one pass. sin_out and cos_out must be different arrays. */
ZOLVEX_M_API int32_t zolvex_m_sincos_f32(const float* x, float* sin_out, float* cos_out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_sincos_f64(const double* x, double* sin_out, double* cos_out, uint32_t n);
/** @} */

/** Where a phase record continues after its last block. Zero-fill it before
 * the first block ({0} in C); unwrap fills it in. f32 values are held
 * exactly in the doubles. */
typedef struct ZolvexMUnwrapState {
    double previous;   /**< the last input sample so far */
    double correction; /**< the multiple of 2*pi added to it (summed) */
    uint32_t started;  /**< 0 until the record's first sample was seen */
} ZolvexMUnwrapState;

/** @name unwrap */
/** @{ */
/** Phase unwrapping as numpy.unwrap(x) does it (period 2*pi): where two
 * consecutive samples differ by pi or more, every later sample is shifted by
 * the multiple of 2*pi that brings the difference into [-pi, pi] (a jump of
 * exactly +pi stays +pi, -pi stays -pi). Computed with numpy's operations in
 * the element type (its constants rounded to it), so the results are
 * numpy.unwrap's bit for bit; the first sample of a record is copied.
 * Summed corrections are not exact: a long record's later samples carry
 * the rounding of the running sum, as numpy's do. A NaN or infinite sample
 * makes it and every later output NaN, as in numpy.
 * state NULL: x is a whole record. Otherwise the call continues the record
 * that *state describes (a zero-filled one starts a record) and leaves
 * *state at the end of this block, so a record unwrapped block by block
 * gives the same bits as in one call. A count of 0 leaves *state as it is.
 * One kernel (a running sum). */
ZOLVEX_M_API int32_t zolvex_m_unwrap_f32(const float* x, float* out, uint32_t n, ZolvexMUnwrapState* state);
ZOLVEX_M_API int32_t zolvex_m_unwrap_f64(const double* x, double* out, uint32_t n, ZolvexMUnwrapState* state);
/** @} */

/** @} */

/* ------------------------------------------------------------------------ */
/**
 * @defgroup integer_and_bit_operations Integer and bit operations
 * @{
 */
/** @name shl, shr */
/** @{ */
/** Element-wise operations on raw integer samples (and clipping of every
 * sample type), with the conventions of this header: inputs, output, count,
 * constants; out may be x; a count of 0 touches nothing. All return 0,
 * except the shifts on the accelerator (below). Kernels: SSE4.2 (the shifts
 * and clip of u16 and u32), AVX2 (with FMA3) and AVX-512BW (F, CD and BW)
 * for all, each with the plain loop's results.
 *
 * zolvex_m_shl_*, zolvex_m_shr_*: out[i] = x[i] << shift, x[i] >> shift
 * (logical), keeping the element's width. A shift of the element width or
 * more gives 0, as zolvex_m_shr_clip_* does. With ZOLVEX_M_OPT_IPP on, counts
 * from 1 to 2^31 - 1 go to the accelerator (ippsLShiftC / ippsRShiftC, the
 * in-place form when out == x; shifts beyond the width are passed as the
 * width), which gives the same results; should it report an error the call
 * returns ZOLVEX_M_STATUS_FAILED. Larger counts use the kernels. */
ZOLVEX_M_API int32_t zolvex_m_shl_u8(const uint8_t* x, uint8_t* out, uint32_t n, uint32_t shift);
ZOLVEX_M_API int32_t zolvex_m_shl_u16(const uint16_t* x, uint16_t* out, uint32_t n, uint32_t shift);
ZOLVEX_M_API int32_t zolvex_m_shr_u8(const uint8_t* x, uint8_t* out, uint32_t n, uint32_t shift);
ZOLVEX_M_API int32_t zolvex_m_shr_u16(const uint16_t* x, uint16_t* out, uint32_t n, uint32_t shift);
/** @} */

/** @name andc, bit_mask_set, bit_mask_test */
/** @{ */
/** Bit masks, e.g. to strip status bits from ADC words or to read the digital
 * channels packed into a mixed-signal instrument's samples:
 *  - zolvex_m_andc_*: out[i] = x[i] & mask;
 *  - zolvex_m_bit_mask_set_*: out[i] = x[i] | mask;
 *  - zolvex_m_bit_mask_test_*: out[i] = 1 if x[i] has any bit of mask set,
 *    else 0 (a mask of 0 gives all zeros); to test for all bits of a mask,
 *    test them one at a time. i16 works on the two's complement bits. */
ZOLVEX_M_API int32_t zolvex_m_andc_u8(const uint8_t* x, uint8_t* out, uint32_t n, uint8_t mask);
ZOLVEX_M_API int32_t zolvex_m_andc_i16(const int16_t* x, int16_t* out, uint32_t n, int16_t mask);
ZOLVEX_M_API int32_t zolvex_m_andc_u16(const uint16_t* x, uint16_t* out, uint32_t n, uint16_t mask);
ZOLVEX_M_API int32_t zolvex_m_andc_u32(const uint32_t* x, uint32_t* out, uint32_t n, uint32_t mask);
ZOLVEX_M_API int32_t zolvex_m_bit_mask_set_u8(const uint8_t* x, uint8_t* out, uint32_t n, uint8_t mask);
ZOLVEX_M_API int32_t zolvex_m_bit_mask_set_i16(const int16_t* x, int16_t* out, uint32_t n, int16_t mask);
ZOLVEX_M_API int32_t zolvex_m_bit_mask_set_u16(const uint16_t* x, uint16_t* out, uint32_t n, uint16_t mask);
ZOLVEX_M_API int32_t zolvex_m_bit_mask_set_u32(const uint32_t* x, uint32_t* out, uint32_t n, uint32_t mask);
ZOLVEX_M_API int32_t zolvex_m_bit_mask_test_u8(const uint8_t* x, uint8_t* out, uint32_t n, uint8_t mask);
ZOLVEX_M_API int32_t zolvex_m_bit_mask_test_i16(const int16_t* x, int16_t* out, uint32_t n, int16_t mask);
ZOLVEX_M_API int32_t zolvex_m_bit_mask_test_u16(const uint16_t* x, uint16_t* out, uint32_t n, uint16_t mask);
ZOLVEX_M_API int32_t zolvex_m_bit_mask_test_u32(const uint32_t* x, uint32_t* out, uint32_t n, uint32_t mask);
/** @} */

/** @name clip */
/** @{ */
/** zolvex_m_clip_*: v = x[i] < low ? low : x[i]; out[i] = v > high ? high : v.
 * So low > high gives high everywhere (as zolvex_m_shr_clip_*). For f32/f64
 * a comparison with NaN is false: a NaN sample stays NaN, and a NaN bound
 * bounds nothing (low NaN: clip to at most high; both NaN: a copy). -0.0 and
 * +0.0 compare equal, so a zero sample keeps its sign against a zero bound
 * of the other sign, and a zero bound replaces only samples beyond it. */
ZOLVEX_M_API int32_t zolvex_m_clip_u8(const uint8_t* x, uint8_t* out, uint32_t n, uint8_t low, uint8_t high);
ZOLVEX_M_API int32_t zolvex_m_clip_i16(const int16_t* x, int16_t* out, uint32_t n, int16_t low, int16_t high);
ZOLVEX_M_API int32_t zolvex_m_clip_u16(const uint16_t* x, uint16_t* out, uint32_t n, uint16_t low,
                                       uint16_t high);
ZOLVEX_M_API int32_t zolvex_m_clip_u32(const uint32_t* x, uint32_t* out, uint32_t n, uint32_t low,
                                       uint32_t high);
ZOLVEX_M_API int32_t zolvex_m_clip_f32(const float* x, float* out, uint32_t n, float low, float high);
ZOLVEX_M_API int32_t zolvex_m_clip_f64(const double* x, double* out, uint32_t n, double low, double high);
/** @} */

/** @} */

/* ------------------------------------------------------------------------ */
/**
 * @defgroup sample_utilities_de_interleaving_and_exponential_fit Sample utilities: de-interleaving and exponential fit
 * @{
 */
/** Instruments deliver several channels interleaved in one buffer (channel
 * 0, channel 1, ..., channel 0, ...); these split it into one buffer per
 * channel. They check no argument (null pointers included) and return 0.
 * Destinations must not overlap the source or each other.
 *
 * zolvex_m_deinterleave: one channel of any sample size. Copies `count`
 * samples of `sample_size` bytes, the first at source + channel *
 * sample_size, each following one channel_count * sample_size bytes further
 * on, to consecutive places in destination (count * sample_size bytes).
 * With one channel (or a sample size of 0) that is one block copy. The
 * stride is computed in 64 bits and never wraps. */
ZOLVEX_M_API int32_t zolvex_m_deinterleave(const void* source, uint32_t channel, uint32_t channel_count,
                                           uint32_t count, uint32_t sample_size, void* destination);

/** @name deinterleave2, deinterleave3, deinterleave4, deinterleave5, ... */
/** @{ */
/** zolvex_m_deinterleaveN_u8 / _u16, N = 2 to 6: all channels at once.
 * total is the number of samples in source, all channels together: with
 * frames = total / N and rest = total % N (truncating),
 * destination_c[f] = source[f * N + c] for f < frames, and the rest
 * samples of the incomplete last frame go to the first `rest` channels
 * (destination_c[frames] = source[frames * N + c], c < rest): the first
 * channels may receive one sample more. A total of 0 or less writes
 * nothing. Kernels, chosen per call, all writing exactly what the plain loop
 * writes: byte shuffles of 128-bit vectors (SSE4.2) for 2 to 4 channels; of
 * 256-bit vectors (AVX2 with FMA3) and 512-bit vectors (AVX-512BW) for 2 to
 * 6 channels. */
ZOLVEX_M_API int32_t zolvex_m_deinterleave2_u8(const uint8_t* source, int32_t total, uint8_t* destination0,
                                               uint8_t* destination1);
ZOLVEX_M_API int32_t zolvex_m_deinterleave3_u8(const uint8_t* source, int32_t total, uint8_t* destination0,
                                               uint8_t* destination1, uint8_t* destination2);
ZOLVEX_M_API int32_t zolvex_m_deinterleave4_u8(const uint8_t* source, int32_t total, uint8_t* destination0,
                                               uint8_t* destination1, uint8_t* destination2,
                                               uint8_t* destination3);
ZOLVEX_M_API int32_t zolvex_m_deinterleave5_u8(const uint8_t* source, int32_t total, uint8_t* destination0,
                                               uint8_t* destination1, uint8_t* destination2,
                                               uint8_t* destination3, uint8_t* destination4);
ZOLVEX_M_API int32_t zolvex_m_deinterleave6_u8(const uint8_t* source, int32_t total, uint8_t* destination0,
                                               uint8_t* destination1, uint8_t* destination2,
                                               uint8_t* destination3, uint8_t* destination4,
                                               uint8_t* destination5);
ZOLVEX_M_API int32_t zolvex_m_deinterleave2_u16(const uint16_t* source, int32_t total, uint16_t* destination0,
                                                uint16_t* destination1);
ZOLVEX_M_API int32_t zolvex_m_deinterleave3_u16(const uint16_t* source, int32_t total, uint16_t* destination0,
                                                uint16_t* destination1, uint16_t* destination2);
ZOLVEX_M_API int32_t zolvex_m_deinterleave4_u16(const uint16_t* source, int32_t total, uint16_t* destination0,
                                                uint16_t* destination1, uint16_t* destination2,
                                                uint16_t* destination3);
ZOLVEX_M_API int32_t zolvex_m_deinterleave5_u16(const uint16_t* source, int32_t total, uint16_t* destination0,
                                                uint16_t* destination1, uint16_t* destination2,
                                                uint16_t* destination3, uint16_t* destination4);
ZOLVEX_M_API int32_t zolvex_m_deinterleave6_u16(const uint16_t* source, int32_t total, uint16_t* destination0,
                                                uint16_t* destination1, uint16_t* destination2,
                                                uint16_t* destination3, uint16_t* destination4,
                                                uint16_t* destination5);
/** @} */

/** zolvex_m_fit_exp_f64: fits y[i] = A exp(B i) to count samples at equal
 * steps (i the sample index) as the least-squares line through (i, ln y[i]):
 * with Sx, Sxx, Sy, Sxy the sums of i, i^2, ln y[i], i ln y[i] and
 * D = count Sxx - Sx^2, A = exp((Sxx Sy - Sx Sxy) / D) and
 * B = (count Sxy - Sy Sx) / D (per sample). i^2 is taken as a 32-bit
 * unsigned product, so it wraps modulo 2^32 from i = 65536 on, and long
 * series give the results of that rule. The sums are accumulated in
 * extended precision (x87 80-bit). a and b may be NULL (that result is not
 * written). Returns 0, or ZOLVEX_M_STATUS_FAILED when a sample is <= 0, with
 * neither output written. A NaN sample is not refused and gives NaN results.
 * count 0 or 1: D = 0, both results NaN, status 0. One pass with constant
 * memory: no storage grows with count. Thread-safe; data is only read. */
ZOLVEX_M_API int32_t zolvex_m_fit_exp_f64(const double* data, uint32_t count, double* a, double* b);

/** @} */

/* ------------------------------------------------------------------------ */
/**
 * @defgroup spectral_transforms Spectral transforms
 *
 * Real-to-complex forward and complex-to-real inverse discrete Fourier
 * transforms of one dimension, in single (f32) and double (f64) precision.
 *
 * Layout: a real array holds n values; a complex array holds n/2 + 1 bins
 * (n/2 rounded down) as interleaved (re, im) pairs, 2 * (n/2 + 1) values.
 * Bin k of the forward transform is sum_j x[j] e^(-2 pi i j k / n),
 * k = 0..n/2: the first half of the spectrum (FFTW's r2c layout, IPP's CCS
 * packing). For odd n the last bin is a full complex value; for even n it
 * is the Nyquist bin, real up to rounding, like bin 0. The inverse is
 * x[j] = sum over the full Hermitian spectrum of X[k] e^(+2 pi i j k / n):
 * the imaginary parts of bin 0 and (even n) bin n/2 do not count. Neither
 * direction scales: an inverse of a forward transform gives n times the
 * signal. Input and output must not overlap.
 *
 * Backends, chosen when a plan is made (later option changes do not move
 * it), first allowed wins:
 *  1. ZOLVEX_M_OPT_IPP on: Intel IPP's real DFT (no scaling, no algorithm
 *     hint; its buffers come from its own allocator).
 *  2. ZOLVEX_M_OPT_FFTW3 on (f64) / ZOLVEX_M_OPT_FFTW3F on (f32): FFTW,
 *     planned with FFTW_ESTIMATE at the plan's first execute, on the buffers
 *     that execute gets; later executes reuse that FFTW plan on new buffers,
 *     which FFTW allows only for buffers of the same alignment classes (see
 *     zolvex_m_dft_alignment_of). The FFTW inverse may overwrite its complex
 *     input (FFTW's c2r default), although the pointer is const here.
 *  3. Otherwise the built-in transform, on Eigen's FFT module. Its cost
 *     grows with each prime factor p of n (p operations per sample), so
 *     for lengths with a large prime factor the plan computes the same
 *     transform by Bluestein's chirp-z algorithm on a power-of-two FFT of
 *     at least 1.5 n points instead: every length costs O(n log n). A cost
 *     model picks the engine when the plan is made: chirp-z for prime
 *     lengths from 17 on (and 11); for n = 1024 p from p = 71 to 101 on
 *     (where both engines are within a factor 1.5). Plans up to 2^28
 *     samples.
 * All backends give the same layout and the same (absent) scaling; results
 * differ in the last bits. Accuracy, every backend: for random signals the
 * error of every bin (or sample) stays below 8 * eps * log2(n) times the
 * RMS of the exact result (eps = 2^-24 for f32, 2^-53 for f64); measured at
 * most 1.4 * eps * log2(n), except IPP's f32 inverse at n = 2^20 (5.2).
 *
 * Lengths a backend cannot take, and what happens:
 *  - built-in: n = 0 transforms the empty signal (the forward gives bin 0 =
 *    0 + 0i, so its divn form gives 0/0 = NaN; the inverse writes nothing);
 *    n = 1 copies the sample (the real part of bin 0); n > 2^28: the create
 *    functions (and one-shot transforms) return -2.
 *  - FFTW: a plan of n = 0 or n > INT32_MAX is made, but every execute
 *    returns -1 (FFTW cannot plan such lengths; its planner is not called).
 *  - IPP: the create functions return -1 when IPP refuses the length
 *    (n = 0, n > INT32_MAX, or too long for it).
 * Memory that cannot be had gives -3, whichever backend.
 *
 * Thread safety: distinct plans may run in parallel from any threads; one
 * plan is used by one thread at a time (its work buffers are its own). FFTW
 * planning and FFTW plan destruction are serialised by one process-wide
 * lock per precision. Destroy every plan before the last zolvex_m_fini
 * (which unloads FFTW and IPP).
 * @{
 */

/** @name dft_plan_create_r2c_1d */
/** @{ */
/** Makes a forward plan for n real samples and out_length = n/2 + 1 bins;
 * `in` and `out` are only looked at for their alignment class (FFTW).
 * Returns 0 with *plan set, or a negative code with *plan = NULL: -2 when
 * out_length != n/2 + 1 (or the backend refuses n, see above), -3 out of
 * memory, -1 when the accelerator fails; -5 when plan itself is NULL. The
 * caller owns the plan and releases it with zolvex_m_dft_plan_destroy. */
ZOLVEX_M_API int32_t zolvex_m_dft_plan_create_r2c_1d_f32(const float* in, uint32_t n, float* out,
    uint32_t out_length, void** plan);
ZOLVEX_M_API int32_t zolvex_m_dft_plan_create_r2c_1d_f64(const double* in, uint32_t n, double* out,
    uint32_t out_length, void** plan);
/** @} */

/** @name dft_plan_execute_r2c_1d */
/** @{ */
/** Runs a forward plan. Checks, in this order: plan NULL: -5; n or
 * out_length not the plan's, or the alignment class of in or out not the
 * one the plan was made with: -4 (nothing written); the plan not a forward
 * plan of this precision (an inverse plan, or a f64 plan given to the f32
 * function): -4. Then returns the backend's status: 0, or -1 when FFTW
 * cannot plan or the accelerator fails. */
ZOLVEX_M_API int32_t zolvex_m_dft_plan_execute_r2c_1d_f32(void* plan, const float* in, uint32_t n,
    float* out, uint32_t out_length);
ZOLVEX_M_API int32_t zolvex_m_dft_plan_execute_r2c_1d_f64(void* plan, const double* in, uint32_t n,
    double* out, uint32_t out_length);
/** @} */

/** @name dft_plan_execute_r2c_1d_divn */
/** @{ */
/** As the execute above, then every bin scaled to an amplitude: with
 * one_sided false each bin is divided by n (X[k] / n); with one_sided true
 * bin 0 becomes X[0] / n and every other bin 2 X[k] / n, the last one
 * included even when it is the Nyquist bin of an even n (a cosine of
 * amplitude A at bin k, 0 < k < n/2, then reads A). The division runs in the
 * plan's precision, each part divided by n (or n/2) on its own. A failed
 * transform returns its status and leaves the output unscaled. */
ZOLVEX_M_API int32_t zolvex_m_dft_plan_execute_r2c_1d_divn_f32(void* plan, const float* in,
    uint32_t n, float* out, uint32_t out_length, bool one_sided);
ZOLVEX_M_API int32_t zolvex_m_dft_plan_execute_r2c_1d_divn_f64(void* plan, const double* in,
    uint32_t n, double* out, uint32_t out_length, bool one_sided);
/** @} */

/** @name idft_plan_create_c2r_1d */
/** @{ */
/** Makes an inverse plan for in_length = n/2 + 1 bins and n real samples;
 * statuses as for zolvex_m_dft_plan_create_r2c_1d_* (-2 when in_length !=
 * n/2 + 1). */
ZOLVEX_M_API int32_t zolvex_m_idft_plan_create_c2r_1d_f32(const float* in, uint32_t in_length,
    float* out, uint32_t n, void** plan);
ZOLVEX_M_API int32_t zolvex_m_idft_plan_create_c2r_1d_f64(const double* in, uint32_t in_length,
    double* out, uint32_t n, void** plan);
/** @} */

/** @name idft_plan_execute_c2r_1d */
/** @{ */
/** Runs an inverse plan; checks and statuses as for the forward execute (a
 * forward plan given here: -4). */
ZOLVEX_M_API int32_t zolvex_m_idft_plan_execute_c2r_1d_f32(void* plan, const float* in,
    uint32_t in_length, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_idft_plan_execute_c2r_1d_f64(void* plan, const double* in,
    uint32_t in_length, double* out, uint32_t n);
/** @} */

/** @name dft_plan_destroy, idft_plan_destroy */
/** @{ */
/** Release a plan; NULL is ignored. Either function takes either kind. */
ZOLVEX_M_API void zolvex_m_dft_plan_destroy(void* plan);
ZOLVEX_M_API void zolvex_m_idft_plan_destroy(void* plan);
/** @} */

/** @name dft_alignment_of, idft_alignment_of */
/** @{ */
/** The alignment class of address p for a plan: FFTW's (fftw_alignment_of
 * or fftwf_alignment_of) for FFTW plans, 0 for every address with the other
 * backends; with a NULL plan, p mod 16. Executes of an FFTW plan need
 * buffers of the classes the plan was made with. Either function takes
 * either kind of plan. */
ZOLVEX_M_API int32_t zolvex_m_dft_alignment_of(void* plan, const void* p);
ZOLVEX_M_API int32_t zolvex_m_idft_alignment_of(void* plan, const void* p);
/** @} */

/** @name dft, dft_divn, idft */
/** @{ */
/** One-shot transforms: a plan made for exactly these buffers (with the
 * backend order above), run once and destroyed; nothing is kept, so the
 * same call gives the same bits every time, and every call pays the
 * planning. Returns -2 when the complex length is not n/2 + 1 (nothing
 * written), else the status of making or running the plan. dft_divn scales
 * as zolvex_m_dft_plan_execute_r2c_1d_divn_*. The inverse has no divn form:
 * divide its result by n yourself. */
ZOLVEX_M_API int32_t zolvex_m_dft_f32(const float* in, uint32_t n, float* out, uint32_t out_length);
ZOLVEX_M_API int32_t zolvex_m_dft_f64(const double* in, uint32_t n, double* out, uint32_t out_length);
ZOLVEX_M_API int32_t zolvex_m_dft_divn_f32(const float* in, uint32_t n, float* out,
    uint32_t out_length, bool one_sided);
ZOLVEX_M_API int32_t zolvex_m_dft_divn_f64(const double* in, uint32_t n, double* out,
    uint32_t out_length, bool one_sided);
ZOLVEX_M_API int32_t zolvex_m_idft_f32(const float* in, uint32_t in_length, float* out, uint32_t n);
ZOLVEX_M_API int32_t zolvex_m_idft_f64(const double* in, uint32_t in_length, double* out, uint32_t n);
/** @} */

/** @} */

/* ------------------------------------------------------------------------ */
/**
 * @defgroup iir_filters IIR filters
 * @{
 */
/** Design (Butterworth, Chebyshev I and II, notch, peak), description,
 * frequency response and execution of IIR filters. A design returns a
 * filter state, an opaque handle the caller owns and releases with
 * zolvex_m_filter_state_destroy. A state holds its filter in up to three
 * equivalent forms, each derived from another the first time it is asked
 * for and then kept:
 *  - zeros, poles and gain (ZPK):
 *      H(z) = k prod(1 - z_i z^-1) / prod(1 - p_i z^-1);
 *  - transfer function (TF): H(z) = (b[0] + b[1] z^-1 + ...) /
 *    (a[0] + a[1] z^-1 + ...), b and a of one length;
 *  - second-order sections (SOS): rows b0 b1 b2 a0 a1 a2 with a0 = 1,
 *    applied one after the other.
 * Butterworth and Chebyshev designs are stored as ZPK, notch and peak as
 * TF. The sections come from the ZPK (for notch and peak from a ZPK found
 * as the roots of the TF).
 *
 * High orders: the ZPK and the sections are accurate at every order; the
 * TF is the ZPK multiplied out, and its coefficients lose precision as the
 * order grows, the faster the closer the poles lie together (narrow bands,
 * cut-offs far from fs / 4): at order 8 with a cut-off at 3 % of fs the
 * response from the TF is good to about 1e-7, and at high orders the TF
 * describes another filter or none (a response of NaN or infinity). The
 * calls still complete. Use the sections (zolvex_m_filter_iir_get_sos,
 * zolvex_m_filter_execute_*) and the ZPK response
 * (zolvex_m_filter_iir_freqz_zpk) for such filters, not the TF. The gain
 * of a very narrow band filter of very high order can lie below the range
 * of doubles (order 255, band 1 % of fs wide: about 1e-386); it is then 0
 * and the filter passes nothing.
 *
 * Every filter function catches what fails inside it and returns
 * ZOLVEX_M_STATUS_FAILED (-1) (execution: see there); a null state gives
 * -1 (reset_delay_line and destroy: nothing happens). Other pointers are
 * not tested.
 *
 * Thread safety: the accessors, the frequency responses and isstable may
 * run on one state from any number of threads at once (the forms are
 * stored atomically, once). Execution and reset_delay_line need the
 * caller's exclusion on their state. Destroying a state in use is the
 * caller's error. Different states are independent. */

typedef struct zolvex_m_filter_state zolvex_m_filter_state;

/** @name ZOLVEX_M_FILTER_* */
/** @{ */
/** Response types of the Butterworth and Chebyshev designs. */
#define ZOLVEX_M_FILTER_LOWPASS  0u /**< edge f1 */
#define ZOLVEX_M_FILTER_HIGHPASS 1u /**< edge f1 */
#define ZOLVEX_M_FILTER_BANDPASS 2u /**< edges f1 (lower), f2 (upper) */
#define ZOLVEX_M_FILTER_BANDSTOP 3u /**< edges f1 (lower), f2 (upper) */
/** @} */

/** @name filter_iir_butterworth, filter_iir_chebyshev1, filter_iir_chebyshev2 */
/** @{ */
/** Butterworth, Chebyshev type I (pass-band ripple rp in dB) and Chebyshev
 * type II (stop-band attenuation rs in dB) filters of order 0 to 255
 * (band filters have twice as many poles), designed as scipy.signal's
 * butter, cheby1 and cheby2 with output='zpk' and fs: an analog prototype
 * with cut-off 1 rad/s, moved to the response type and the pre-warped
 * edges, then the bilinear transform. Frequencies are in the unit of fs.
 * Checks, each failing with -1 and *state unwritten:
 *  - fs <= 0 (a NaN fs passes this check but fails the next);
 *  - f1 < 0 or f2 < 0: f2 is checked for every type, so low- and high-pass
 *    callers pass a non-negative value such as 0;
 *  - rp < 0, rs < 0 (0 is accepted, and so is infinity);
 *  - 2 f1 / fs not strictly between 0 and 1; for band types the same for
 *    f2. f2 below f1 is accepted (a negative bandwidth);
 *  - type other than 0 to 3.
 * Edge values the checks let through design without failing: rp = 0, a
 * NaN rp or rs and similar give zeros or poles that are infinite or NaN
 * (such a state has no sections and cannot filter: -1). Gains are formed
 * without overflow or underflow in the products over the roots (scipy's
 * own overflow at order 255), so a gain is infinite or 0 only if the
 * filter's own is out of range. Returns 0 and the new state in *state. */
ZOLVEX_M_API int32_t zolvex_m_filter_iir_butterworth(uint32_t type, uint8_t order, double fs, double f1,
                                                     double f2, zolvex_m_filter_state** state);
ZOLVEX_M_API int32_t zolvex_m_filter_iir_chebyshev1(uint32_t type, uint8_t order, double fs, double f1,
                                                    double f2, double rp, zolvex_m_filter_state** state);
ZOLVEX_M_API int32_t zolvex_m_filter_iir_chebyshev2(uint32_t type, uint8_t order, double fs, double f1,
                                                    double f2, double rs, zolvex_m_filter_state** state);
/** @} */

/** @name filter_iir_notch, filter_iir_peak */
/** @{ */
/** Second-order notch and peak (resonator) filters at f0 with -3 dB
 * bandwidth `bandwidth` (both in the unit of fs), as scipy.signal's
 * iirnotch and iirpeak with Q = f0 / bandwidth. 2 f0 / fs must lie in
 * [0, 1], both ends included, else -1 with *state unwritten; nothing else
 * is checked (f0 = 0 or bandwidth = 0 give NaN or degenerate
 * coefficients). Stored as TF. Returns 0 and the new state in *state. */
ZOLVEX_M_API int32_t zolvex_m_filter_iir_notch(double fs, double f0, double bandwidth,
                                               zolvex_m_filter_state** state);
ZOLVEX_M_API int32_t zolvex_m_filter_iir_peak(double fs, double f0, double bandwidth,
                                              zolvex_m_filter_state** state);
/** @} */

/** @name filter_iir_get_zpk, filter_iir_get_tf, filter_iir_get_sos */
/** @{ */
/** The state's forms. Arrays point into the state: valid until it is
 * destroyed, never to be written or freed; repeated calls return the same
 * pointers.
 * get_zpk: zeros and poles as interleaved (real, imaginary) pairs of
 * doubles, their counts, and the gain. For a notch or peak the ZPK is
 * found as the roots of b and a (eigenvalues of their companion matrices;
 * leading zero coefficients lower the degree, k = b[0] / a[0]); -1 if a
 * coefficient is not finite.
 * get_tf: b and a, and their common length (order + 1).
 * get_sos: an array of pointers to six-coefficient rows and the number of
 * rows: ceil(n / 2) sections for n poles (zeros), one section holding the
 * gain for order 0. Paired as scipy.signal.zpk2sos(pairing='nearest'):
 * the pole nearest the unit circle first, with its conjugate or the next
 * such real pole and the nearest zeros; the sections written in reverse
 * order of choice (the poles nearest the unit circle act last), the gain
 * in the first section's b. -1 when the ZPK has a NaN or infinite root or
 * a complex root without its conjugate. Returns 0 or -1 (nothing
 * written). */
ZOLVEX_M_API int32_t zolvex_m_filter_iir_get_zpk(zolvex_m_filter_state* state, const double** zeros,
                                                 uint32_t* zero_count, const double** poles,
                                                 uint32_t* pole_count, double* gain);
ZOLVEX_M_API int32_t zolvex_m_filter_iir_get_tf(zolvex_m_filter_state* state, const double** b,
                                                const double** a, uint32_t* length);
ZOLVEX_M_API int32_t zolvex_m_filter_iir_get_sos(zolvex_m_filter_state* state, const double* const** sections,
                                                 uint32_t* section_count);
/** @} */

/** Releases the state and everything it handed out. NULL does nothing. */
ZOLVEX_M_API void zolvex_m_filter_state_destroy(zolvex_m_filter_state* state);

/** @name filter_iir_freqz_zpk, filter_iir_freqz */
/** @{ */
/** Frequency response at n points, written to frequencies[0..n) (in the
 * unit of fs) and response[0..2n) (interleaved real, imaginary):
 *  - linear grid: w_i = i (pi / n), or i (2 pi / n) when `whole`;
 *    frequencies i fs / (2n) (i fs / n), from 0 up to, not including,
 *    fs / 2 (fs);
 *  - logarithmic grid: n points evenly spaced in log10 from w = 2 pi / fs
 *    (frequency exactly 1) up to, not including, pi (2 pi when `whole`);
 *    fs = 0 gives non-finite frequencies.
 * freqz_zpk evaluates k prod(e - z) / prod(e - p) at e = exp(j w) (as
 * scipy.signal.freqz_zpk); freqz evaluates B(e^-1) / A(e^-1) from the TF
 * (as scipy.signal.freqz; the TF is derived and kept when the state has
 * none, see "High orders" above), its points divided among tasks on the
 * thread pool (the values do not depend on the division). n = 0 returns 0
 * and writes nothing. Returns 0, or -1 when the needed form cannot be had
 * (nothing written). */
ZOLVEX_M_API int32_t zolvex_m_filter_iir_freqz_zpk(zolvex_m_filter_state* state, uint32_t n, double fs, bool whole,
                                                   bool logarithmic, double* frequencies, double* response);
ZOLVEX_M_API int32_t zolvex_m_filter_iir_freqz(zolvex_m_filter_state* state, uint32_t n, double fs, bool whole,
                                               bool logarithmic, double* frequencies, double* response);
/** @} */

/** *stable = 1 when every pole of the ZPK lies strictly inside the unit
 * circle (a pole on it, or a NaN pole, gives 0). A filter without poles is
 * deliberately not reported as stable: -1 and *stable unwritten. Returns 0
 * or -1. */
ZOLVEX_M_API int32_t zolvex_m_filter_iir_isstable(zolvex_m_filter_state* state, bool* stable);

/** @name filter_execute */
/** @{ */
/** Filters count samples from input to output (output may equal input) and
 * keeps the delay line in the state, so consecutive blocks are filtered as
 * one signal: one block of 2n samples gives the bits of two blocks of n.
 * The first call builds the state's runtime filter from its sections,
 * for the sample type of that call: use a state with one of the two
 * functions only (the other returns -1). It is built on the accelerator
 * when ZOLVEX_M_OPT_IPP is on at that moment, else built in; it stays
 * what it was built as.
 *  - Built in: every section computes, in the sample type, for each
 *    sample y = b0 x + d0; d0 = b1 x + d1 - a1 y; d1 = b2 x - a2 y
 *    (transposed direct form II, each operation rounded, no fused
 *    multiply-add), its y feeding the next section. AVX2 (with FMA3) and
 *    AVX-512 (F with CD) kernels run the sections side by side in vector
 *    lanes with the same bits as the generic kernel.
 *  - Accelerator: IPP's biquad cascade (ippsIIR_32f/_64f and their in-place
 *    forms), whose arithmetic is its own: results differ from the built-in
 *    ones in the last bits. As tested (Chebyshev II band-passes of 2 to 16
 *    poles): f64 within 1e-12 of the output's largest magnitude, f32 no
 *    further from the exact values than 4 times the built-in f32 output.
 * Returns 0; -1 when the state has no description sections can be made
 * from (also for a NaN design) or was built for the other sample type; the
 * status of a failed build (-3: no memory; -1: the accelerator reported an
 * error), after which the next call tries again; -1 when the accelerator
 * reports an error while filtering. count = 0 returns 0 and writes
 * nothing. */
ZOLVEX_M_API int32_t zolvex_m_filter_execute_f32(const float* input, float* output, uint32_t count,
                                                 zolvex_m_filter_state* state);
ZOLVEX_M_API int32_t zolvex_m_filter_execute_f64(const double* input, double* output, uint32_t count,
                                                 zolvex_m_filter_state* state);
/** @} */

/** steady_state false: the delay line becomes zero now (each section then
 * answers the first sample x with b0 x). true: the next non-empty block
 * starts as if its first sample x had been the input for ever (each
 * section's delay line x zi, zi being its steady state for a unit step at
 * the cascade's input, as scipy.signal.sosfilt_zi), so a constant block
 * passes a filter of DC gain 1 unchanged. A section with a pole at z = 1
 * (no finite steady state) and the sections after it start at zero. The
 * flag is kept in the state, so a runtime filter built later starts the
 * same way; a new state starts at zero. */
ZOLVEX_M_API void zolvex_m_filter_reset_delay_line(zolvex_m_filter_state* state, bool steady_state);

/** @} */

/* ------------------------------------------------------------------------ */
/**
 * @defgroup diagnostics Diagnostics
 * @{
 */

/** Which kernel a call would run under the current options: entry `index`
 * of the library's kernel report, one entry per family and sample type,
 * read from the same kernel tables the calls choose from (as `zolvexm
 * kernels` prints it).
 *
 * @param index        0 for the first entry; count up until -1 comes back.
 * @param family       receives the functions the entry covers, as in their
 *                     names ("minmax", "add sub mul div ...").
 * @param type         receives the sample type suffix ("u8", "f32", ...).
 * @param level        receives the instruction-set level a call would use
 *                     now: "generic", "sse42", "avx", "avx2" (with FMA3),
 *                     "avx512" (F with CD) or "avx512bw".
 * @param accelerator  receives the accelerator that would take the call
 *                     instead ("ipp", "fftw3", "fftw3f"), or NULL when the
 *                     library's own kernel runs.
 * @return 0 with all four written; -1 (ZOLVEX_M_STATUS_FAILED) when index
 *         is past the last entry, nothing written.
 *
 * The texts are constant and never freed. Entries follow no particular
 * order, but the same build always lists them in the same order. Takes no
 * lock, needs no init (before it every level is "generic"); the answer
 * changes with zolvex_m_setopt. For diagnostics: a program should not
 * branch on it. */
ZOLVEX_M_API int32_t zolvex_m_kernel_report(uint32_t index, const char** family, const char** type,
                                            const char** level, const char** accelerator);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* ZOLVEX_M_H */
