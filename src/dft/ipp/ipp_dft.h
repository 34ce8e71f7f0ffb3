#pragma once
// Plans on the accelerator (Intel IPP's real DFT): the DFT setup structure and
// work buffers come from its allocator and go back to its ippFree. Complete
// at creation; any alignment will do.

#include <cstdint>
#include <memory>

#include "dft/abstract_dft.h"

namespace lib::ipp {

// The accelerator's DFT setup structure and work buffer for a real DFT of length
// n, without scaling in either direction. Throws StatusError: the mapped
// accelerator status when it rejects the length, -3 when its allocator
// fails.
template <class T>
class DFTSpec {
public:
    explicit DFTSpec(uint32_t n);
    int forward(const T* in, T* out) const noexcept;
    int inverse(const T* in, T* out) const noexcept;

private:
    struct Free {
        void operator()(uint8_t* p) const noexcept;
    };
    using Buffer = std::unique_ptr<uint8_t, Free>;
    // Destroyed in reverse order: the work buffer, then the setup structure.
    Buffer spec_, work_;
};

template <class T>
class DFTR2C1D final : public dft::AbstractDFTR2C1D<T> {
public:
    explicit DFTR2C1D(uint32_t n) : dft::AbstractDFTR2C1D<T>(n, 0, 0), spec_(n) {}
    int execute(const void* in, uint32_t, void* out, uint32_t) override {
        return spec_.forward(static_cast<const T*>(in), static_cast<T*>(out));
    }

private:
    DFTSpec<T> spec_;
};

template <class T>
class IDFTC2R1D final : public dft::AbstractIDFTC2R1D<T> {
public:
    explicit IDFTC2R1D(uint32_t n) : dft::AbstractIDFTC2R1D<T>(n, 0, 0), spec_(n) {}
    int execute(const void* in, uint32_t, void* out, uint32_t) override {
        return spec_.inverse(static_cast<const T*>(in), static_cast<T*>(out));
    }

private:
    DFTSpec<T> spec_;
};

extern template class DFTSpec<float>;
extern template class DFTSpec<double>;

} // namespace lib::ipp
