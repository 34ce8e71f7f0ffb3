// Benchmarks of libzolvex-m. Every benchmark reports bytes per second (bytes
// read plus bytes written) and `vs_read`: that rate as a fraction of the
// plain read bandwidth for the same buffer size, measured in this run.

#include <benchmark/benchmark.h>

#include "zolvex_m.h"

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    zolvex_m_init();
    // Our kernels unless a benchmark asks for the accelerator.
    zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 0);
    benchmark::RunSpecifiedBenchmarks();
    zolvex_m_fini();
    benchmark::Shutdown();
    return 0;
}
