#include "core/os_library.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#include <limits.h>
#include <sys/stat.h>
#endif

namespace os {

#if defined(_WIN32)

LibraryHandle load_library(const char* file_name) noexcept { return LoadLibraryA(file_name); }

void* find_symbol(LibraryHandle library, const char* name) noexcept {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

void free_library(LibraryHandle library) noexcept { FreeLibrary(static_cast<HMODULE>(library)); }

void keep_loaded(const char* file_name) noexcept {
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_PIN, file_name, &module);
}

std::string library_directory(LibraryHandle library) {
    char path[MAX_PATH];
    DWORD length = GetModuleFileNameA(static_cast<HMODULE>(library), path, MAX_PATH);
    std::string full(path, length);
    size_t slash = full.find_last_of("\\/");
    return slash == std::string::npos ? std::string() : full.substr(0, slash);
}

bool file_exists(const std::string& path) noexcept { return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES; }

#else

// RTLD_LOCAL keeps the optional libraries' names out of the global scope, so
// they can never satisfy another library's symbols by accident.
LibraryHandle load_library(const char* file_name) noexcept { return dlopen(file_name, RTLD_NOW | RTLD_LOCAL); }

void* find_symbol(LibraryHandle library, const char* name) noexcept { return dlsym(library, name); }

void free_library(LibraryHandle library) noexcept { dlclose(library); }

// RTLD_NOLOAD with RTLD_NODELETE marks the library already loaded.
void keep_loaded(const char* file_name) noexcept {
    if (void* again = dlopen(file_name, RTLD_NOW | RTLD_LOCAL | RTLD_NOLOAD | RTLD_NODELETE)) dlclose(again);
}

std::string library_directory(LibraryHandle library) {
    char origin[PATH_MAX] = {};
    if (dlinfo(library, RTLD_DI_ORIGIN, origin) != 0) return {};
    return origin;
}

bool file_exists(const std::string& path) noexcept {
    struct stat info;
    return stat(path.c_str(), &info) == 0;
}

#endif

} // namespace os
