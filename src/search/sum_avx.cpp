// AVX f64 sums: four partial sums, one vector of four lanes, in the order
// sum.h gives (each add waits for the previous one of its lane, so this
// kernel runs at the adder's latency, not its throughput: the order is the
// point, not the speed).

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "search/sum.h"

namespace search::avx {

constexpr unsigned kVectorBytes = 32;
#include "search/partial_sums.inc"

} // namespace search::avx
