// Stand-in for double-precision FFTW missing one name (renamed away by the
// build with -D<name>=<name>_left_out).
#define ZOLVEX_M_STAND_IN(name) \
    extern "C" __attribute__((visibility("default"))) int name() { return 0; }
ZOLVEX_M_STAND_IN(fftw_alignment_of)
ZOLVEX_M_STAND_IN(fftw_plan_dft_r2c_1d)
ZOLVEX_M_STAND_IN(fftw_plan_dft_c2r_1d)
ZOLVEX_M_STAND_IN(fftw_execute)
ZOLVEX_M_STAND_IN(fftw_execute_dft_r2c)
ZOLVEX_M_STAND_IN(fftw_execute_dft_c2r)
ZOLVEX_M_STAND_IN(fftw_destroy_plan)
