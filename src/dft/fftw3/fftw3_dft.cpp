#include "dft/fftw3/fftw3_dft.h"

namespace lib::fftw3 {
namespace {
std::mutex g_planner_mutex;
} // namespace

std::mutex& planner_mutex() noexcept { return g_planner_mutex; }
} // namespace lib::fftw3
