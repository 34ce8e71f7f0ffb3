#include <atomic>
#include <cstdint>
#include <mutex>

#include "core/init.h"
#include "core/dispatch.h"
#include "core/libraries.h"
#include "core/options.h"
#include "zolvex/zolvex_core.h"
#include "zolvex_m.h"
#include "zolvex/zolvex_tp.h"

namespace core {
namespace {

std::mutex g_init_mutex;
// Not guarded against going below zero: a fini without an init wraps it to
// all ones, and the next init merely brings it back to zero.
std::atomic<uint32_t> g_init_count{0};
// Pool threads as reported at init; 0 is stored as 1.
uint16_t g_thread_count = 1;

// The base functions alone are of no use: when the function table cannot
// be loaded, the base record is unloaded too, so an incomplete accelerator
// leaves nothing mapped.
void load_accelerator() noexcept {
    if (lib::ipp::load_base() && !lib::ipp::load_table()) lib::ipp::unload_base();
}

void read_library_options() noexcept {
    set_option_flag(ZOLVEX_M_OPT_IPP, lib::ipp::base_loaded() && lib::ipp::table_loaded());
    set_option_flag(ZOLVEX_M_OPT_FFTW3, lib::fftw3::loaded());
    set_option_flag(ZOLVEX_M_OPT_FFTW3F, lib::fftw3f::loaded());
}

void read_pool_size() noexcept {
    zolvex_tp_status status{};
    zolvex_tp_get_status(&status, sizeof status);
    g_thread_count = status.threads == 0 ? 1 : status.threads;
}

void unload_optional_libraries() noexcept {
    lib::fftw3f::unload();
    lib::fftw3::unload();
    lib::ipp::unload_table();
    lib::ipp::unload_base();
}

} // namespace

uint32_t init_count() noexcept { return g_init_count.load(); }
uint16_t pool_thread_count() noexcept { return g_thread_count; }

} // namespace core

extern "C" {

int32_t zolvex_m_init(void) {
    std::lock_guard<std::mutex> lock(core::g_init_mutex);
    if (core::g_init_count.fetch_add(1) != 0) return 0;
    zolvex_core_init();
    zolvex_tp_init();
    core::load_accelerator();
    core::read_processor_options();
    core::read_library_options();
    core::choose_dispatch_tables();
    core::read_pool_size();
    return 0;
}

int32_t zolvex_m_fini(void) {
    std::lock_guard<std::mutex> lock(core::g_init_mutex);
    if (core::g_init_count.fetch_sub(1) != 1) return 0;
    core::unload_optional_libraries();
    zolvex_tp_fini();
    zolvex_core_fini();
    return 0;
}

} // extern "C"
