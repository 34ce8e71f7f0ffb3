#include "core/libraries.h"

#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "core/ipp.h"
#include "core/os_library.h"

namespace lib {
namespace {

// A loaded library: its module and the address of each of its names.
template <size_t N>
struct LoadedLibrary {
    os::LibraryHandle module = nullptr;
    void* functions[N] = {};

    bool loaded() const noexcept { return module != nullptr; }

    // Resolves the names in order; at the first one missing the library is
    // unloaded and every address cleared, so a partly present library is
    // never used.
    bool load(const char* file_name, const char* const (&names)[N]) noexcept {
        module = os::load_library(file_name);
        if (module == nullptr) return false;
        for (size_t i = 0; i < N; ++i) {
            functions[i] = os::find_symbol(module, names[i]);
            if (functions[i] == nullptr) {
                os::free_library(module);
                module = nullptr;
                for (void*& f : functions) f = nullptr;
                return false;
            }
        }
        return true;
    }

    void unload() noexcept {
        if (module != nullptr) os::free_library(module);
        module = nullptr;
    }
};

#define ZOLVEX_M_NAME(name) #name,
#define ZOLVEX_M_FFTW_NAME(name) "fftw_" #name,
#define ZOLVEX_M_FFTWF_NAME(name) "fftwf_" #name,
constexpr const char* kIppBaseNames[] = {ZOLVEX_M_IPP_BASE(ZOLVEX_M_NAME)};
constexpr const char* kIppTableNames[] = {ZOLVEX_M_IPP_TABLE(ZOLVEX_M_NAME)};
constexpr const char* kFftw3Names[] = {ZOLVEX_M_FFTW_FUNCTIONS(ZOLVEX_M_FFTW_NAME)};
constexpr const char* kFftw3fNames[] = {ZOLVEX_M_FFTW_FUNCTIONS(ZOLVEX_M_FFTWF_NAME)};
#undef ZOLVEX_M_FFTWF_NAME
#undef ZOLVEX_M_FFTW_NAME
#undef ZOLVEX_M_NAME
static_assert(std::size(kIppTableNames) == 67);
static_assert(std::size(kIppBaseNames) == size_t(ipp::BaseFn::count));
static_assert(std::size(kFftw3Names) == size_t(FftwFn::count));

LoadedLibrary<std::size(kIppBaseNames)> g_ipp_base;
LoadedLibrary<std::size(kIppTableNames)> g_ipp_table;
LoadedLibrary<std::size(kFftw3Names)> g_fftw3;
LoadedLibrary<std::size(kFftw3fNames)> g_fftw3f;

#if defined(_WIN32)

constexpr const char* kFftw3File = "libfftw3.dll";
constexpr const char* kFftw3fFile = "libfftw3f.dll";

std::string find_accelerator() { return "libipp-zolvex.dll"; }

#else

constexpr const char* kFftw3File = "libfftw3.so.3";
constexpr const char* kFftw3fFile = "libfftw3f.so.3";

// The names of IPP libraries written in a file: the dispatcher's own
// dependencies and the per-processor libraries it loads for the running
// processor (for example libippsk0.so.12.1).
std::vector<std::string> ipp_library_names_in(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    std::vector<std::string> names;
    for (size_t at = bytes.find("libipp"); at != std::string::npos; at = bytes.find("libipp", at + 1)) {
        size_t end = bytes.find('\0', at);
        if (end == std::string::npos) break;
        std::string name = bytes.substr(at, end - at);
        bool plain = name.find(".so") != std::string::npos &&
                     name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_.") == std::string::npos;
        if (plain) names.push_back(name);
    }
    return names;
}

// IPP's dispatcher loads its per-processor code while it is being loaded
// and ends the whole process if that code is missing. So the install is
// used only if every library the dispatcher names lies beside it.
bool install_is_whole(const std::string& directory, const std::string& dispatcher) {
    for (const std::string& name : ipp_library_names_in(directory + "/" + dispatcher))
        if (!os::file_exists(directory + "/" + name)) return false;
    return true;
}

// The accelerator's path, or empty if there is no whole install. Its core
// (which is safe to load) shows where the loader finds the installation;
// the signal-processing library beside it is then loaded by path. The
// unversioned development name is tried first, then known sonames.
std::string find_accelerator() {
    for (const char* suffix : {"", ".12", ".11", ".10"}) {
        os::LibraryHandle core = os::load_library((std::string("libippcore.so") + suffix).c_str());
        if (core == nullptr) continue;
        std::string directory = os::library_directory(core);
        os::free_library(core);
        std::string dispatcher = std::string("libipps.so") + suffix;
        if (!directory.empty() && os::file_exists(directory + "/" + dispatcher) &&
            install_is_whole(directory, dispatcher))
            return directory + "/" + dispatcher;
    }
    return {};
}

#endif

// Found once by the base record, reused by the table record of the same
// init.
std::string g_accelerator_path;

} // namespace

namespace ipp {

bool load_base() noexcept {
    try {
        g_accelerator_path = find_accelerator();
    } catch (...) {
        g_accelerator_path.clear();
    }
    return !g_accelerator_path.empty() && g_ipp_base.load(g_accelerator_path.c_str(), kIppBaseNames);
}

bool load_table() noexcept {
    return !g_accelerator_path.empty() && g_ipp_table.load(g_accelerator_path.c_str(), kIppTableNames);
}

void unload_table() noexcept { g_ipp_table.unload(); }
void unload_base() noexcept { g_ipp_base.unload(); }
bool base_loaded() noexcept { return g_ipp_base.loaded(); }
bool table_loaded() noexcept { return g_ipp_table.loaded(); }
void* table_function(Fn f) noexcept { return g_ipp_table.functions[size_t(f)]; }
void* base_function(BaseFn f) noexcept { return g_ipp_base.functions[size_t(f)]; }

} // namespace ipp

// FFTW keeps its planner's memory (twiddle tables, wisdom) for as long as
// it is loaded, and frees it only in fftw_cleanup, which would also end the
// plans of anyone else in the process who uses FFTW. So a loaded FFTW stays
// mapped after its last unload: unmapped, that memory would be lost at
// every init/fini cycle.
namespace {
template <size_t N>
bool load_and_keep(LoadedLibrary<N>& library, const char* file_name, const char* const (&names)[N]) noexcept {
    if (!library.load(file_name, names)) return false;
    os::keep_loaded(file_name);
    return true;
}
} // namespace

namespace fftw3 {
bool load() noexcept { return load_and_keep(g_fftw3, kFftw3File, kFftw3Names); }
void unload() noexcept { g_fftw3.unload(); }
bool loaded() noexcept { return g_fftw3.loaded(); }
void* function(FftwFn f) noexcept { return g_fftw3.functions[size_t(f)]; }
} // namespace fftw3

namespace fftw3f {
bool load() noexcept { return load_and_keep(g_fftw3f, kFftw3fFile, kFftw3fNames); }
void unload() noexcept { g_fftw3f.unload(); }
bool loaded() noexcept { return g_fftw3f.loaded(); }
void* function(FftwFn f) noexcept { return g_fftw3f.functions[size_t(f)]; }
} // namespace fftw3f

} // namespace lib
