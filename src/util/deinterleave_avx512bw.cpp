// AVX-512BW de-interleaving: four 128-bit lanes per vector. Every shuffle
// of 512-bit vectors takes the one shuffle port, so halving masks, shifts
// and packs (one shuffle per result) and reads vectors as they lie, one
// lane-crossing permute per result restoring the order; blends are one
// bitwise select (vpternlog). The scheme is in deinterleave_loops.inc.

// GCC 12 warns about the deliberately undefined pass-through operand inside
// its own AVX-512 intrinsics: the warning points into the header, not at
// anything this file does.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#include <immintrin.h>
#pragma GCC diagnostic pop

#include <array>
#include <cstddef>
#include <cstdint>

#include "util/deinterleave.h"

namespace util::avx512bw {

namespace {

struct Lanes {
    using V = __m512i;
    static constexpr size_t kLanes = 4;
    static constexpr bool kShuffleHalves = false;
    static V load(const void* p) { return _mm512_loadu_si512(p); }
    static void store(void* p, V v) { _mm512_storeu_si512(p, v); }
    static V load_lanes(const uint8_t* p, size_t stride) {
        V v = _mm512_castsi128_si512(lane(p));
        v = _mm512_inserti32x4(v, lane(p + stride), 1);
        v = _mm512_inserti32x4(v, lane(p + 2 * stride), 2);
        return _mm512_inserti32x4(v, lane(p + 3 * stride), 3);
    }
    static V load_step(const uint8_t* step, unsigned j, unsigned) { return load(step + 64 * j); }
    static V repeat(const Bytes16& bytes) { return _mm512_broadcast_i32x4(lane(bytes.data())); }
    static V shuffle(V v, V control) { return _mm512_shuffle_epi8(v, control); }
    // Truth table of mask ? b : a over the operands (a, b, mask): a, which
    // the caller drops, is the one the instruction overwrites.
    static V select(V mask, V a, V b) { return _mm512_ternarylogic_epi32(a, b, mask, 0xD8); }
    static V both(V a, V b) { return _mm512_and_si512(a, b); }
    static V high_bytes(V v) { return _mm512_srli_epi16(v, 8); }
    static V high_words(V v) { return _mm512_srli_epi32(v, 16); }
    static V pack_words(V a, V b) { return _mm512_packus_epi16(a, b); }
    static V pack_dwords(V a, V b) { return _mm512_packus_epi32(a, b); }
    static V even_dwords(V a, V b) { return dwords<0x88>(a, b); }
    static V odd_dwords(V a, V b) { return dwords<0xDD>(a, b); }
    // Group m of the source sits at lane m % 4, place m / 4 of that lane.
    static V quads_in_order(V v) { return _mm512_permutexvar_epi64(_mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7), v); }
    static V dwords_in_order(V v) {
        return _mm512_permutexvar_epi32(_mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15), v);
    }

    static __m128i lane(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
    template <int kPick>
    static V dwords(V a, V b) {
        return _mm512_castps_si512(_mm512_shuffle_ps(_mm512_castsi512_ps(a), _mm512_castsi512_ps(b), kPick));
    }
};

} // namespace

#include "util/deinterleave_loops.inc"

ZOLVEX_M_DEINTERLEAVE_ALL(ZOLVEX_M_DEFINE_DEINTERLEAVE)

} // namespace util::avx512bw
