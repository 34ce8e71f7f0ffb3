#pragma once
// Optional libraries loaded at run time: the accelerator (base functions and
// function table) and the two FFTW precisions. Loading is all or nothing: a
// library missing any function it is expected to have is unloaded again.

namespace lib {

namespace ipp {
bool load_base() noexcept;   // at the first init
bool load_table() noexcept;  // at the first init, after load_base succeeded
void unload_table() noexcept;
void unload_base() noexcept;
bool base_loaded() noexcept;
bool table_loaded() noexcept;
} // namespace ipp

namespace fftw3 {
bool load() noexcept;
void unload() noexcept;
bool loaded() noexcept;
} // namespace fftw3

namespace fftw3f {
bool load() noexcept;
void unload() noexcept;
bool loaded() noexcept;
} // namespace fftw3f

} // namespace lib
