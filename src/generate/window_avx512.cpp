// The cosine-sum window kernel compiled for AVX-512F: eight samples per vector.

#include <cstdint>
#include <cstring>
#include <utility>

#include "generate/window.h"

namespace generate::avx512 {

constexpr unsigned kVectorBytes = 64;
#include "generate/window_loops.inc"

} // namespace generate::avx512
