#include "core/libraries.h"

// No optional library is looked for yet: every record stays empty, so every
// function uses its built-in code and the IPP/FFTW options stay off.

namespace lib {

namespace ipp {
bool load_base() noexcept { return false; }
bool load_table() noexcept { return false; }
void unload_table() noexcept {}
void unload_base() noexcept {}
bool base_loaded() noexcept { return false; }
bool table_loaded() noexcept { return false; }
} // namespace ipp

namespace fftw3 {
bool load() noexcept { return false; }
void unload() noexcept {}
bool loaded() noexcept { return false; }
} // namespace fftw3

namespace fftw3f {
bool load() noexcept { return false; }
void unload() noexcept {}
bool loaded() noexcept { return false; }
} // namespace fftw3f

} // namespace lib
