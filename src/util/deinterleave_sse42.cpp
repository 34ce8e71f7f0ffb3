// SSE4.2 de-interleaving: one 128-bit lane (SSSE3's byte shuffle, SSE4.1's
// blend); the scheme is in deinterleave_loops.inc.

#include <immintrin.h>

#include <array>
#include <cstddef>
#include <cstdint>

#include "util/deinterleave.h"

namespace util::sse42 {

namespace {

struct Lanes {
    using V = __m128i;
    static constexpr size_t kLanes = 1;
    static constexpr bool kShuffleHalves = true;
    static V load(const void* p) { return _mm_loadu_si128(static_cast<const V*>(p)); }
    static void store(void* p, V v) { _mm_storeu_si128(static_cast<V*>(p), v); }
    static V load_lanes(const uint8_t* p, size_t) { return load(p); }
    static V load_step(const uint8_t* step, unsigned j, unsigned) { return load(step + 16 * j); }
    static V repeat(const Bytes16& bytes) { return load(bytes.data()); }
    static V shuffle(V v, V control) { return _mm_shuffle_epi8(v, control); }
    static V select(V mask, V a, V b) { return _mm_blendv_epi8(a, b, mask); }
    static V low_quads(V a, V b) { return _mm_unpacklo_epi64(a, b); }
    static V high_quads(V a, V b) { return _mm_unpackhi_epi64(a, b); }
    static V even_dwords(V a, V b) { return dwords<0x88>(a, b); }
    static V odd_dwords(V a, V b) { return dwords<0xDD>(a, b); }
    static V quads_in_order(V v) { return v; }
    static V dwords_in_order(V v) { return v; }

    template <int kPick>
    static V dwords(V a, V b) {
        return _mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b), kPick));
    }
};

} // namespace

#include "util/deinterleave_loops.inc"

ZOLVEX_M_DEINTERLEAVE_NARROW(ZOLVEX_M_DEFINE_DEINTERLEAVE)

} // namespace util::sse42
