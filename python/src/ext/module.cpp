// The extension module zolvex_m._ext: starts the library on import, stops it
// at interpreter exit, turns status codes into zolvex_m.Error and gives the
// option flags.
#include "arrays.h"

#include <nanobind/stl/pair.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

#include <utility>
#include <vector>

namespace zpy {

bool library_closed = false;

namespace {

using nb::arg;

std::string status_text(int32_t status) {
    const char* text = zolvex_m_status_str(status);
    return text ? text : "Unknown status";
}

std::vector<std::pair<int32_t, std::string>> option_list() {
    std::vector<std::pair<int32_t, std::string>> rows;
    for (const OptionEntry* e = zolvex_m_getopt_list(); e->id != 0; ++e) rows.emplace_back(e->id, e->description);
    return rows;
}

}  // namespace
}  // namespace zpy

NB_MODULE(_ext, m) {
    using namespace zpy;
    zolvex_m_init();
    // zolvex_m.Error(status, text), raised for every failed call.
    // Kept for the life of the process: no reference is dropped after the
    // interpreter has gone.
    static nb::object& error_type = *new nb::object(nb::module_::import_("zolvex_m._error").attr("Error"));
    nb::register_exception_translator([](const std::exception_ptr& p, void*) {
        try {
            std::rethrow_exception(p);
        } catch (const StatusError& e) {
            nb::object error = error_type(e.status, status_text(e.status));
            PyErr_SetObject(error_type.ptr(), error.ptr());
        }
    });
    m.def("status_text", &status_text, arg("status"));
    m.def("getopt", [](int32_t id) {
        uint32_t value = 0;
        check(zolvex_m_getopt(id, &value));
        return value != 0;
    }, arg("id"));
    m.def("setopt", [](uint32_t id, bool on) { return zolvex_m_setopt(id, on ? 1 : 0) == 0; }, arg("id"), arg("on"));
    m.def("option_list", &option_list);
    m.def("version", [] {
        auto* v = static_cast<const ZolvexMVersion*>(zolvex_m_get_version());
        return nb::make_tuple(v->major, v->minor, v->release, v->build);
    });
    // Called once at interpreter exit (atexit): objects that outlive it
    // keep their handles instead of releasing them into a stopped library.
    m.def("_shutdown", [] {
        if (!library_closed) {
            library_closed = true;
            zolvex_m_fini();
        }
    });
    bind_elementwise(m);
    bind_statistics(m);
    bind_trigger(m);
    bind_generate(m);
    bind_dft(m);
    bind_filter(m);
}
