#pragma once
// What every fuzz target shares: a reader that turns the fuzzer's bytes into
// arguments and sample blocks, the kernel regimes (the tests' ladder) to run
// a call in, and a check that stops the run with a message when an oracle
// disagrees. A target answers one question per input: does the library keep
// its documented rule for these arguments, in every kernel regime?

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

#include "support/regime_ladder.h"
#include "zolvex_m.h"

namespace fuzz {

// Stops the run: libFuzzer keeps the input that got here as a crash.
[[noreturn]] inline void fail(const char* what, long long detail = 0) {
    std::fprintf(stderr, "oracle failed: %s (%lld)\n", what, detail);
    std::abort();
}
inline void check(bool ok, const char* what, long long detail = 0) {
    if (!ok) fail(what, detail);
}

// Takes values off the front of the input; once it is used up every value
// reads as zero, so every input is a valid one.
class Bytes {
public:
    Bytes(const uint8_t* data, size_t size) : data_(data), size_(size) {}

    template <class T>
    T take() {
        static_assert(std::is_trivially_copyable_v<T>);
        T value{};
        size_t n = size_ < sizeof(T) ? size_ : sizeof(T);
        if (n) std::memcpy(&value, data_, n);
        data_ += n;
        size_ -= n;
        return value;
    }
    // A value in [0, count).
    uint32_t pick(uint32_t count) { return count == 0 ? 0 : take<uint32_t>() % count; }
    bool flag() { return take<uint8_t>() & 1; }
    // A level or constant of type T: now and then a value the rules treat
    // specially (NaN, infinities, type limits), otherwise raw bits.
    template <class T>
    T level() {
        uint8_t how = take<uint8_t>();
        if constexpr (std::is_floating_point_v<T>) {
            switch (how % 8) {
            case 0: return std::numeric_limits<T>::quiet_NaN();
            case 1: return std::numeric_limits<T>::infinity();
            case 2: return -std::numeric_limits<T>::infinity();
            case 3: return static_cast<T>(static_cast<int8_t>(take<uint8_t>()));
            default: break;
            }
        } else if (how % 8 == 0) {
            return (how & 8) ? std::numeric_limits<T>::max() : std::numeric_limits<T>::min();
        }
        return take<T>();
    }
    // The rest of the input as samples of T, at most `most` of them.
    template <class T>
    std::vector<T> samples(size_t most = 1u << 16) {
        size_t n = size_ / sizeof(T);
        if (n > most) n = most;
        std::vector<T> out(n);
        if (n) std::memcpy(out.data(), data_, n * sizeof(T));
        data_ += n * sizeof(T);
        size_ -= n * sizeof(T);
        return out;
    }
    size_t left() const { return size_; }

private:
    const uint8_t* data_;
    size_t size_;
};

// The kernel regimes the processor has, narrowest (generic) first.
inline const std::vector<core::Isa>& regimes() {
    static const std::vector<core::Isa> available = [] {
        std::vector<core::Isa> list;
        for (core::Isa isa : core::kIsaNarrowestFirst)
            if (testing_support::apply_regime(isa)) list.push_back(isa);
        testing_support::apply_regime(list.back());
        return list;
    }();
    return available;
}

// Runs f() in the generic regime and in the one `choice` picks among the
// others, and hands both results to same(generic, vector). The widest
// regime is left on.
template <class F, class Same>
void generic_against_vector(uint8_t choice, F&& f, Same&& same) {
    const auto& list = regimes();
    core::Isa chosen = list[1 + choice % (list.size() - 1)];
    testing_support::apply_regime(core::Isa::generic);
    auto generic = f();
    testing_support::apply_regime(chosen);
    auto vector = f();
    testing_support::apply_regime(list.back());
    same(generic, vector);
}

// Bitwise equality of two arrays, NaNs equal to any NaN (kernels may give
// another payload).
template <class T>
bool same_values(const std::vector<T>& a, const std::vector<T>& b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        if constexpr (std::is_floating_point_v<T>)
            if (std::isnan(a[i]) && std::isnan(b[i])) continue;
        if (std::memcmp(&a[i], &b[i], sizeof(T)) != 0) return false;
    }
    return true;
}

// One zolvex_m_init for the whole run, from LLVMFuzzerInitialize.
// The accelerator stays off: its results are its own, not the rule's.
inline int initialise() {
    zolvex_m_init();
    zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 0);
    regimes();
    return 0;
}

} // namespace fuzz

#define ZOLVEX_M_FUZZ_INITIALISE                                                                 \
    extern "C" int LLVMFuzzerInitialize(int*, char***) { return fuzz::initialise(); }
