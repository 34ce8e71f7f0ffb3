// The cosine-sum window kernel compiled for AVX2: four samples per vector.

#include <cstdint>
#include <cstring>
#include <utility>

#include "generate/window.h"

namespace generate::avx2 {

constexpr unsigned kVectorBytes = 32;
#include "generate/window_loops.inc"

} // namespace generate::avx2
