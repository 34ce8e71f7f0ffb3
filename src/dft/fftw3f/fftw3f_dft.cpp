#include "dft/fftw3f/fftw3f_dft.h"

namespace lib::fftw3f {
namespace {
std::mutex g_planner_mutex;
} // namespace

std::mutex& planner_mutex() noexcept { return g_planner_mutex; }
} // namespace lib::fftw3f
