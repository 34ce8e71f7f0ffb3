// AVX2 de-interleaving: two 128-bit lanes per vector, each loaded from its
// own block so that no lane crosses the vector afterwards (crossing lanes is
// the slow shuffle here); otherwise as SSE4.2. The scheme is in
// deinterleave_loops.inc.

#include <immintrin.h>

#include <array>
#include <cstddef>
#include <cstdint>

#include "util/deinterleave.h"

namespace util::avx2 {

namespace {

struct Lanes {
    using V = __m256i;
    static constexpr size_t kLanes = 2;
    static constexpr bool kShuffleHalves = true;
    static V load(const void* p) { return _mm256_loadu_si256(static_cast<const V*>(p)); }
    static void store(void* p, V v) { _mm256_storeu_si256(static_cast<V*>(p), v); }
    static V load_lanes(const uint8_t* p, size_t stride) {
        return _mm256_loadu2_m128i(reinterpret_cast<const __m128i*>(p + stride), reinterpret_cast<const __m128i*>(p));
    }
    static V load_step(const uint8_t* step, unsigned j, unsigned n) { return load_lanes(step + 16 * j, 16 * n); }
    static V repeat(const Bytes16& bytes) {
        return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes.data())));
    }
    static V shuffle(V v, V control) { return _mm256_shuffle_epi8(v, control); }
    static V select(V mask, V a, V b) { return _mm256_blendv_epi8(a, b, mask); }
    static V low_quads(V a, V b) { return _mm256_unpacklo_epi64(a, b); }
    static V high_quads(V a, V b) { return _mm256_unpackhi_epi64(a, b); }
    static V even_dwords(V a, V b) { return dwords<0x88>(a, b); }
    static V odd_dwords(V a, V b) { return dwords<0xDD>(a, b); }
    static V quads_in_order(V v) { return v; }
    static V dwords_in_order(V v) { return v; }

    template <int kPick>
    static V dwords(V a, V b) {
        return _mm256_castps_si256(_mm256_shuffle_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b), kPick));
    }
};

} // namespace

#include "util/deinterleave_loops.inc"

ZOLVEX_M_DEINTERLEAVE_ALL(ZOLVEX_M_DEFINE_DEINTERLEAVE)

} // namespace util::avx2
