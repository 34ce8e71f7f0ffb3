// Trigger searches as objects that keep their state from block to block.
#include "arrays.h"

#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

#include <functional>
#include <map>
#include <vector>

namespace zpy {
namespace {

using nb::arg;

#define ZPY_TRIGGER(name)                                                                                 \
    Overloads{zolvex_m_trigger_##name##_u8, zolvex_m_trigger_##name##_i16, zolvex_m_trigger_##name##_u16, \
              zolvex_m_trigger_##name##_f32, zolvex_m_trigger_##name##_f64}

// What a search is given besides the data: levels in the order of the C
// function's parameters, then mode and duration limits for the timed kinds.
struct Settings {
    std::vector<double> levels;
    int32_t mode = 0;
    uint32_t times[2] = {0, 0};
};

// One argument of a trigger function, chosen by its type: the sample type is
// the next level, int32_t the mode, uint32_t the next duration limit.
template <class P, class T>
P pick(const Settings& s, size_t& level, size_t& time, uint32_t* position, void** state) {
    if constexpr (std::is_same_v<P, T>) return level_as<T>(s.levels[level++]);
    else if constexpr (std::is_same_v<P, int32_t>) return s.mode;
    else if constexpr (std::is_same_v<P, uint32_t>) return s.times[time++ & 1];
    else if constexpr (std::is_same_v<P, uint32_t*>) return position;
    else return state;
}

// Status of one search from *position; state is unused by the stateless
// window_outside.
using Step = std::function<int32_t(const void*, uint32_t, uint32_t*, void**)>;

template <class T, class... P> Step stepper(int32_t (*fn)(const T*, uint32_t, P...), const Settings& s) {
    constexpr size_t wanted = (size_t{std::is_same_v<P, T>} + ...);
    if (s.levels.size() != wanted)
        throw nb::value_error(("trigger: this kind takes " + std::to_string(wanted) + " levels").c_str());
    return [fn, s](const void* data, uint32_t n, uint32_t* position, void** state) {
        size_t level = 0, time = 0;
        // Braced initialisation: the arguments are formed left to right.
        std::tuple<P...> args{pick<P, T>(s, level, time, position, state)...};
        return std::apply([&](P... a) { return fn(static_cast<const T*>(data), n, a...); }, args);
    };
}

template <class Ops> Step step_for(const Ops& ops, nb::dlpack::dtype dt, const Settings& s) {
    Step step;
    ops.on(dt, "Trigger", [&](auto fn, auto) {
        step = stepper(fn, s);
        return nb::object();
    });
    return step;
}

Step make_step(const std::string& kind, nb::dlpack::dtype dt, const Settings& s) {
    static const std::map<std::string, std::function<Step(nb::dlpack::dtype, const Settings&)>> kinds = {
#define ZPY_KIND(name) {#name, [](nb::dlpack::dtype d, const Settings& st) { return step_for(ZPY_TRIGGER(name), d, st); }}
        ZPY_KIND(edge_rising), ZPY_KIND(edge_falling), ZPY_KIND(edge_any),
        ZPY_KIND(window_inside), ZPY_KIND(window_outside), ZPY_KIND(window_enter), ZPY_KIND(window_exit),
        ZPY_KIND(pulse_width_positive), ZPY_KIND(pulse_width_negative),
        ZPY_KIND(interval_positive), ZPY_KIND(interval_negative),
        ZPY_KIND(runt_pulse_positive), ZPY_KIND(runt_pulse_negative), ZPY_KIND(runt_pulse_any),
#undef ZPY_KIND
    };
    return named(kinds, kind, "Trigger kind")(dt, s);
}

class Trigger {
public:
    Trigger(const std::string& kind, nb::dlpack::dtype dt, std::vector<double> levels, int32_t mode,
            uint32_t time_min, uint32_t time_max)
        : dtype_(dt) {
        Settings s{std::move(levels), mode, {time_min, time_max}};
        step_ = make_step(kind, dt, s);
    }
    Trigger(const Trigger&) = delete;
    Trigger& operator=(const Trigger&) = delete;
    ~Trigger() {
        if (state_ && !library_closed) zolvex_m_state_free(&state_);
    }

    // Every trigger position in this block, in order; a search that runs
    // out of samples goes on in the next block.
    nb::ndarray<nb::numpy, uint32_t> find(const In& block) {
        if (block.dtype() != dtype_) throw nb::type_error("Trigger.find: the block's dtype is not the trigger's");
        if (busy_) throw nb::value_error("Trigger.find: the trigger is in use by another thread");
        uint32_t n = length32(block.size(), "Trigger.find");
        std::vector<uint32_t> found;
        busy_ = true;
        int32_t status = released([&] {
            uint32_t position = 0;
            while (position < n) {
                int32_t s = step_(block.data(), n, &position, &state_);
                if (s != 0 || position >= n) return s;
                found.push_back(position);
                ++position;
            }
            // A block that starts at or beyond its length still gets its
            // state block made on the first call.
            return n == 0 ? step_(block.data(), 0, &position, &state_) : 0;
        });
        busy_ = false;
        samples_ += n;
        check(status);
        auto out = new_vector<uint32_t>(found.size());
        if (!found.empty()) std::memcpy(out.data(), found.data(), found.size() * sizeof(uint32_t));
        return out;
    }

    // Samples searched so far: add it to a position to get the position in
    // the whole stream.
    uint64_t samples() const { return samples_; }

    void reset() {
        if (state_) zolvex_m_state_free(&state_);
        samples_ = 0;
    }

private:
    nb::dlpack::dtype dtype_;
    Step step_;
    void* state_ = nullptr;
    uint64_t samples_ = 0;
    bool busy_ = false;
};

nb::dlpack::dtype dtype_named(const std::string& name) {
    if (name == "uint8") return nb::dtype<uint8_t>();
    if (name == "int16") return nb::dtype<int16_t>();
    if (name == "uint16") return nb::dtype<uint16_t>();
    if (name == "float32") return nb::dtype<float>();
    if (name == "float64") return nb::dtype<double>();
    throw nb::type_error(("Trigger: unsupported dtype " + name + "; takes uint8, int16, uint16, float32, float64").c_str());
}

}  // namespace

void bind_trigger(nb::module_& m) {
    nb::class_<Trigger>(m, "_Trigger")
        .def("__init__", [](Trigger* t, const std::string& kind, const std::string& dtype, std::vector<double> levels,
                            int32_t mode, uint32_t time_min, uint32_t time_max) {
            new (t) Trigger(kind, dtype_named(dtype), std::move(levels), mode, time_min, time_max);
        }, arg("kind"), arg("dtype"), arg("levels"), arg("mode") = 0, arg("time_min") = 0, arg("time_max") = 0)
        .def("find", &Trigger::find, arg("block"))
        .def_prop_ro("samples", &Trigger::samples)
        .def("reset", &Trigger::reset);
}

}  // namespace zpy
