#pragma once
// Optional libraries loaded at run time: the accelerator (its base
// functions and its function table, two records on two handles of the same
// library) and the two FFTW precisions. Loading is all or nothing: a library
// missing any name it is expected to have is unloaded again and its record
// stays empty. Unloading keeps the function addresses (they are only used
// while the matching option is on).

#include <cstdint>

namespace lib {

namespace ipp {
bool load_base() noexcept;   // at the first init
bool load_table() noexcept;  // at the first init, after load_base succeeded
void unload_table() noexcept;
void unload_base() noexcept;
bool base_loaded() noexcept;
bool table_loaded() noexcept;
} // namespace ipp

// The FFTW functions, in the order they are resolved; the same for both
// precisions (fftw_... and fftwf_...).
#define ZOLVEX_M_FFTW_FUNCTIONS(X)                                                                 \
    X(alignment_of) X(plan_dft_r2c_1d) X(plan_dft_c2r_1d) X(execute) X(execute_dft_r2c)            \
    X(execute_dft_c2r) X(destroy_plan)

enum class FftwFn : uint32_t {
#define ZOLVEX_M_FFTW_ENUM(name) name,
    ZOLVEX_M_FFTW_FUNCTIONS(ZOLVEX_M_FFTW_ENUM)
#undef ZOLVEX_M_FFTW_ENUM
    count
};

namespace fftw3 {
bool load() noexcept;
void unload() noexcept;
bool loaded() noexcept;
void* function(FftwFn f) noexcept;
} // namespace fftw3

namespace fftw3f {
bool load() noexcept;
void unload() noexcept;
bool loaded() noexcept;
void* function(FftwFn f) noexcept;
} // namespace fftw3f

} // namespace lib
