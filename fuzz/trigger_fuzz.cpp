// Trigger searches of every kind and sample type, streamed block by block:
// each call against the sample-by-sample model of the tests (the same cut
// of the stream into blocks, the same state block afterwards), the stream in
// random blocks against the stream in one block where the kind's triggers do
// not depend on where blocks start, every kernel regime against the generic
// one, and state blocks holding arbitrary words: -1 with nothing written,
// or a search that ends.

#include "fuzz_support.h"
#include "trigger/trigger_model.h"

namespace {

using namespace trigger_model;

template <class T>
struct Functions;
#define ZOLVEX_M_TRIGGER_FUNCTIONS(T, suffix)                                                                      \
    template <>                                                                                                     \
    struct Functions<T> {                                                                                           \
        static constexpr auto rising = zolvex_m_trigger_edge_rising_##suffix;                                      \
        static constexpr auto falling = zolvex_m_trigger_edge_falling_##suffix;                                    \
        static constexpr auto any = zolvex_m_trigger_edge_any_##suffix;                                            \
        static constexpr auto inside = zolvex_m_trigger_window_inside_##suffix;                                    \
        static constexpr auto outside = zolvex_m_trigger_window_outside_##suffix;                                  \
        static constexpr auto enter = zolvex_m_trigger_window_enter_##suffix;                                      \
        static constexpr auto exit = zolvex_m_trigger_window_exit_##suffix;                                        \
        static constexpr decltype(zolvex_m_trigger_pulse_width_positive_##suffix)* timed[] = {                     \
            zolvex_m_trigger_pulse_width_positive_##suffix, zolvex_m_trigger_pulse_width_negative_##suffix,       \
            zolvex_m_trigger_interval_positive_##suffix,    zolvex_m_trigger_interval_negative_##suffix,          \
            zolvex_m_trigger_runt_pulse_positive_##suffix,  zolvex_m_trigger_runt_pulse_negative_##suffix,        \
            zolvex_m_trigger_runt_pulse_any_##suffix};                                                              \
    };
ZOLVEX_M_TRIGGER_FUNCTIONS(uint8_t, u8)
ZOLVEX_M_TRIGGER_FUNCTIONS(int16_t, i16)
ZOLVEX_M_TRIGGER_FUNCTIONS(uint16_t, u16)
ZOLVEX_M_TRIGGER_FUNCTIONS(float, f32)
ZOLVEX_M_TRIGGER_FUNCTIONS(double, f64)

// How a stream is fed, read before the samples: where its blocks end, the
// kernel regime, and (now and then) arbitrary words for the state block.
struct Feeding {
    uint16_t cuts[8];
    uint8_t regime;
    uint8_t corrupt;  // one in eight
    uint8_t words[sizeof(RuntBlock)];

    // The stream of n samples cut into blocks (empty blocks included).
    std::vector<uint32_t> lengths(uint32_t n) const {
        std::vector<uint32_t> out;
        uint32_t left = n;
        for (uint16_t cut : cuts) {
            uint32_t length = cut % (left + 1);
            out.push_back(length);
            left -= length;
        }
        out.push_back(left);
        return out;
    }
};

// One search: the library call with its levels, and the model of it.
template <class T, class Model, class Call>
void check_search(const Feeding& feeding, const std::vector<T>& x, const Model& model, Call&& call,
                  bool split_invariant) {
    using Block = typename Model::Block;
    const std::vector<uint32_t> split = feeding.lengths(uint32_t(x.size()));
    const bool corrupt = (feeding.corrupt & 7) == 0;
    Block start{};
    if (corrupt) std::memcpy(&start, feeding.words, sizeof(Block));

    // The library over the stream; each call also against the model.
    auto library = [&](const std::vector<uint32_t>& lengths) {
        void* state = nullptr;
        Block reference = start;
        // The model keeps its start in signed arithmetic: only from blocks
        // it made itself.
        const bool model_ok = !corrupt;
        auto result = feed_blocks<T>(
            [&](const T* block, uint32_t length, uint32_t& position) {
                const uint32_t before = position;
                if (state == nullptr) {
                    // The first call allocates; then put the chosen words in.
                    uint32_t past = length;
                    fuzz::check(call(block, length, &past, &state) == 0 && past == length, "allocating call");
                    std::memcpy(state, &start, sizeof(Block));
                }
                Block saved;
                std::memcpy(&saved, state, sizeof(Block));
                const int32_t status = call(block, length, &position, &state);
                if (status == ZOLVEX_M_STATUS_FAILED) {
                    fuzz::check(!Model::valid(saved), "-1 for a valid state block");
                    fuzz::check(position == before && std::memcmp(&saved, state, sizeof(Block)) == 0,
                                "-1 but something written");
                    return status;
                }
                fuzz::check(status == 0, "status", status);
                if (model_ok) {
                    Outcome expected = run(model, block, length, before, reference);
                    fuzz::check(expected.status == 0 && expected.position == position, "position against the model",
                                position);
                    Block now;
                    std::memcpy(&now, state, sizeof(Block));
                    fuzz::check(now == reference, "state block against the model");
                }
                return status;
            },
            x.data(), lengths);
        zolvex_m_state_free(&state);
        return result;
    };
    std::vector<uint32_t> whole{uint32_t(x.size())};
    fuzz::generic_against_vector(
        feeding.regime, [&] { return library(split).triggers; },
        [](const auto& a, const auto& b) { fuzz::check(a == b, "a kernel regime against the generic one"); });
    if (split_invariant && !corrupt)
        fuzz::check(library(split).triggers == library(whole).triggers, "blocks against the whole stream");
}

// The stateless outside search against its rule.
template <class T>
void check_outside(const std::vector<T>& x, T high, T low) {
    uint32_t n = uint32_t(x.size());
    for (uint32_t from = 0; from <= n; ++from) {
        uint32_t expected = from;
        while (expected < n && !(x[expected] > high || x[expected] < low)) ++expected;
        uint32_t position = from;
        fuzz::check(Functions<T>::outside(x.data(), n, high, low, &position) == 0 && position == expected,
                    "outside against its rule", from);
        if (expected == n) break;
        from = expected;
    }
}

template <class T>
void fuzz_type(fuzz::Bytes& in) {
    using F = Functions<T>;
    const uint32_t kind = in.pick(14);
    T l[4];
    for (T& v : l) v = in.level<T>();
    Duration d{in.take<int8_t>() % 6, in.take<uint8_t>(), in.take<uint8_t>()};
    const Feeding f = in.take<Feeding>();
    const std::vector<T> x = in.samples<T>(4096);
    auto with = [&](auto fn, auto... levels) {
        return [=](const T* b, uint32_t n, uint32_t* p, void** s) { return fn(b, n, levels..., p, s); };
    };
    auto timed = [&](int i) {
        return [=](const T* b, uint32_t n, uint32_t* p, void** s) {
            return F::timed[i](b, n, l[0], l[1], d.mode, d.time_min, d.time_max, p, s);
        };
    };
    switch (kind) {
    case 0: return check_search(f, x, EdgeRising<T>{{}, l[0], l[1]}, with(F::rising, l[0], l[1]), true);
    case 1: return check_search(f, x, EdgeFalling<T>{{}, l[0], l[1]}, with(F::falling, l[0], l[1]), true);
    case 2: return check_search(f, x, EdgeAny<T>{{}, l[0], l[1], l[2]}, with(F::any, l[0], l[1], l[2]), true);
    case 3: return check_search(f, x, WindowInside<T>{{}, l[0], l[1]}, with(F::inside, l[0], l[1]), false);
    case 4: return check_outside(x, l[0], l[1]);
    case 5:
        return check_search(f, x, WindowEnter<T>{{}, l[0], l[1], l[2], l[3]},
                            with(F::enter, l[0], l[1], l[2], l[3]), true);
    case 6:
        return check_search(f, x, WindowExit<T>{{}, l[0], l[1], l[2], l[3]}, with(F::exit, l[0], l[1], l[2], l[3]),
                            false);
    case 7: return check_search(f, x, PulseWidth<T, true>{{}, l[0], l[1], d}, timed(0), true);
    case 8: return check_search(f, x, PulseWidth<T, false>{{}, l[0], l[1], d}, timed(1), true);
    case 9: return check_search(f, x, Interval<EdgeRising<T>>{{}, {{}, l[1], l[0]}, d}, timed(2), true);
    case 10: return check_search(f, x, Interval<EdgeFalling<T>>{{}, {{}, l[0], l[1]}, d}, timed(3), true);
    default: return check_search(f, x, Runt<T>{l[0], l[1], kind - 11, d}, timed(4 + int(kind - 11)), true);
    }
}

} // namespace

ZOLVEX_M_FUZZ_INITIALISE

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Bytes in(data, size);
    switch (in.pick(5)) {
    case 0: fuzz_type<uint8_t>(in); break;
    case 1: fuzz_type<int16_t>(in); break;
    case 2: fuzz_type<uint16_t>(in); break;
    case 3: fuzz_type<float>(in); break;
    default: fuzz_type<double>(in); break;
    }
    return 0;
}
