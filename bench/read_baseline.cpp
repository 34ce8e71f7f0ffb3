#include "read_baseline.h"

#include <immintrin.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <mutex>
#include <vector>

namespace bench {

namespace {

__attribute__((target("avx2"))) uint64_t read_all_avx2(const void* data, size_t bytes) {
    const auto* p = static_cast<const __m256i*>(data);
    __m256i a = _mm256_setzero_si256(), b = a, c = a, d = a;
    for (size_t i = 0; i < bytes / 32; i += 4) {
        a = _mm256_or_si256(a, _mm256_loadu_si256(p + i));
        b = _mm256_or_si256(b, _mm256_loadu_si256(p + i + 1));
        c = _mm256_or_si256(c, _mm256_loadu_si256(p + i + 2));
        d = _mm256_or_si256(d, _mm256_loadu_si256(p + i + 3));
    }
    __m256i all = _mm256_or_si256(_mm256_or_si256(a, b), _mm256_or_si256(c, d));
    alignas(32) uint64_t lanes[4];
    _mm256_store_si256(reinterpret_cast<__m256i*>(lanes), all);
    return lanes[0] | lanes[1] | lanes[2] | lanes[3];
}

uint64_t read_all_scalar(const void* data, size_t bytes) {
    const auto* p = static_cast<const uint64_t*>(data);
    uint64_t acc = 0;
    for (size_t i = 0; i < bytes / 8; ++i) acc |= p[i];
    return acc;
}

} // namespace

uint64_t read_all(const void* data, size_t bytes) {
    static const bool avx2 = __builtin_cpu_supports("avx2");
    return avx2 ? read_all_avx2(data, bytes) : read_all_scalar(data, bytes);
}

namespace {
std::mutex g_mutex;
std::map<size_t, double> g_bandwidth;
} // namespace

void record_read_bandwidth(size_t bytes, double bytes_per_second) {
    std::lock_guard<std::mutex> lock(g_mutex);
    g_bandwidth[bytes] = bytes_per_second;
}

double read_bandwidth(size_t bytes) {
    std::lock_guard<std::mutex> lock(g_mutex);
    if (auto it = g_bandwidth.find(bytes); it != g_bandwidth.end()) return it->second;

    std::vector<uint8_t> buffer(bytes, 1);
    volatile uint64_t sink = read_all(buffer.data(), bytes);  // warm up
    double best = 0;
    for (int pass = 0; pass < 7; ++pass) {
        size_t rounds = std::max<size_t>(1, (size_t(64) << 20) / bytes);
        auto start = std::chrono::steady_clock::now();
        for (size_t r = 0; r < rounds; ++r) sink = sink + read_all(buffer.data(), bytes);
        std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
        best = std::max(best, double(bytes) * double(rounds) / elapsed.count());
    }
    return g_bandwidth[bytes] = best;
}

} // namespace bench
