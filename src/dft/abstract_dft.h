#pragma once
// The plan classes every backend derives from. A plan transforms one fixed
// length in one direction and precision; the caller holds it as an opaque
// pointer to AbstractDFT, and the exported functions find the kind and
// precision again by a checked down-cast.
//
// Buffers: a real array holds T values; a complex array holds interleaved
// (re, im) pairs of T. Bin k of a real signal of length n is
// sum_j x[j] e^(-2 pi i j k / n) for k = 0..n/2 (the half spectrum); no
// direction scales.

#include <cstdint>

namespace dft {

class AbstractDFT {
public:
    AbstractDFT(uint32_t input_length, int32_t input_alignment, uint32_t output_length,
                int32_t output_alignment) noexcept
        : input_length(input_length), input_alignment(input_alignment), output_length(output_length),
          output_alignment(output_alignment) {}
    virtual ~AbstractDFT() = default;
    AbstractDFT(const AbstractDFT&) = delete;
    AbstractDFT& operator=(const AbstractDFT&) = delete;

    virtual bool check_input_length(uint32_t n) const noexcept { return n == input_length; }
    virtual bool check_output_length(uint32_t n) const noexcept { return n == output_length; }
    // The alignment class of a buffer address; executes must use buffers of
    // the classes the plan was created with. Only FFTW distinguishes any.
    virtual int alignment_of(const void*) const noexcept { return 0; }
    // Transforms in into out (lengths as the plan was made; element types as
    // its kind says) and returns a status code.
    virtual int execute(const void* in, uint32_t in_length, void* out, uint32_t out_length) = 0;

    const uint32_t input_length;
    const int32_t input_alignment;
    const uint32_t output_length;
    const int32_t output_alignment;
};

// Forward: n real samples in, n/2 + 1 complex bins out.
template <class T>
class AbstractDFTR2C1D : public AbstractDFT {
public:
    using Element = T;
    AbstractDFTR2C1D(uint32_t n, int32_t input_alignment, int32_t output_alignment) noexcept
        : AbstractDFT(n, input_alignment, n / 2 + 1, output_alignment) {}

    // execute, then every bin divided by n; one_sided halves bin 0 first and
    // divides by n / 2, giving the one-sided amplitude spectrum (the last bin
    // of an even n is doubled too).
    virtual int execute_divn(const T* in, uint32_t in_length, T* out, uint32_t out_length, bool one_sided);
};

// Inverse: n/2 + 1 complex bins in, n real samples out.
template <class T>
class AbstractIDFTC2R1D : public AbstractDFT {
public:
    using Element = T;
    AbstractIDFTC2R1D(uint32_t n, int32_t input_alignment, int32_t output_alignment) noexcept
        : AbstractDFT(n / 2 + 1, input_alignment, n, output_alignment) {}
};

extern template class AbstractDFTR2C1D<float>;
extern template class AbstractDFTR2C1D<double>;

} // namespace dft
