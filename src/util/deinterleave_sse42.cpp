// SSE4.2 de-interleaving: one 128-bit lane (SSSE3's byte shuffle, SSE4.1's
// blend and 32-bit pack); the scheme is in deinterleave_loops.inc.

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
    static V load(const void* p) { return _mm_loadu_si128(static_cast<const V*>(p)); }
    static void store(void* p, V v) { _mm_storeu_si128(static_cast<V*>(p), v); }
    static V load_lanes(const uint8_t* p, size_t) { return load(p); }
    static V repeat(const Bytes16& bytes) { return load(bytes.data()); }
    static V shuffle(V v, V control) { return _mm_shuffle_epi8(v, control); }
    static V select(V mask, V a, V b) { return _mm_blendv_epi8(a, b, mask); }
    static V both(V a, V b) { return _mm_and_si128(a, b); }
    static V high_bytes(V v) { return _mm_srli_epi16(v, 8); }
    static V high_words(V v) { return _mm_srli_epi32(v, 16); }
    static V pack_words(V a, V b) { return _mm_packus_epi16(a, b); }
    static V pack_dwords(V a, V b) { return _mm_packus_epi32(a, b); }
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

ZOLVEX_M_DEFINE_DEINTERLEAVE(2)
ZOLVEX_M_DEFINE_DEINTERLEAVE(3)
ZOLVEX_M_DEFINE_DEINTERLEAVE(4)

} // namespace util::sse42
