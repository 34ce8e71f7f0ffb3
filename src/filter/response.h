#pragma once
// Frequency response on a grid of n points, end point left out.

#include <cstdint>

#include "filter/descriptions.h"

namespace iir {

struct Grid {
    uint32_t n;
    double fs;
    bool whole;        // up to fs instead of fs / 2
    bool logarithmic;  // from 1 (in the unit of fs) instead of 0

    double angle(uint32_t i) const;                  // radians per sample
    double frequency(uint32_t i, double angle) const;  // in the unit of fs
};

// The transfer function's response at points [0, n), in `pieces` tasks on
// the thread pool; every point is computed alone, so the values do not
// depend on the split.
void tf_response(const FilterState::IIR::TF& tf, const Grid& grid, double* frequencies, double* response,
                 uint32_t pieces);

} // namespace iir
