#pragma once
// The one place that talks to the operating system's dynamic loader.

#include <string>

namespace os {

using LibraryHandle = void*;

// Loads a shared library by file name (searched the platform's way) or by
// path; nullptr if it cannot be loaded.
LibraryHandle load_library(const char* file_name) noexcept;
// Address of an exported name, or nullptr.
void* find_symbol(LibraryHandle library, const char* name) noexcept;
void free_library(LibraryHandle library) noexcept;
// Keeps a loaded library mapped until the process ends, whatever
// free_library calls follow (the handles stay valid to free).
void keep_loaded(const char* file_name) noexcept;
// Directory the loaded library was found in (empty if unknown).
std::string library_directory(LibraryHandle library);

bool file_exists(const std::string& path) noexcept;

} // namespace os
