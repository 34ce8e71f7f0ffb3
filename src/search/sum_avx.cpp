// AVX f64 sums: four partial sums, one vector of four lanes, in the order
// sum.h gives. That order is what the AVX option promises its callers; it
// leaves one chain of dependent adds per lane, so this kernel runs at the
// adder's latency rather than its throughput (more accumulators would
// change the result).

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "search/sum.h"

namespace search::avx {

constexpr unsigned kVectorBytes = 32;
#include "search/partial_sums.inc"

} // namespace search::avx
