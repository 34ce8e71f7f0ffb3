#pragma once
// The accelerator (Intel IPP's signal-processing library) as the library
// uses it: the functions of its table by name, the signatures of those that
// are called, and the typed look-up. The table is valid while the IPP option
// is on; callers test the option first.

#include <cstdint>

namespace lib::ipp {

using IppStatus = int;

// The accelerator's function table, in the order it is resolved.
#define ZOLVEX_M_IPP_TABLE(X)                                                                      \
    X(ippsMalloc_8u) X(ippsLShiftC_8u) X(ippsLShiftC_8u_I) X(ippsLShiftC_16u) X(ippsLShiftC_16u_I) \
    X(ippsRShiftC_8u) X(ippsRShiftC_8u_I) X(ippsRShiftC_16u) X(ippsRShiftC_16u_I) X(ippsMin_16s)   \
    X(ippsMin_64f) X(ippsMin_32f) X(ippsMax_16s) X(ippsMax_32f) X(ippsMax_64f) X(ippsMinMax_8u)    \
    X(ippsMinMax_16s) X(ippsMinMax_16u) X(ippsMinMax_32f) X(ippsMinMax_64f) X(ippsSum_32f)         \
    X(ippsSum_64f) X(ippsMulC_32f) X(ippsMulC_32f_I) X(ippsMulC_64f) X(ippsMulC_64f_I)             \
    X(ippsDivC_32f) X(ippsDivC_32f_I) X(ippsDivC_64f) X(ippsDivC_64f_I) X(ippsDFTGetSize_R_32f)    \
    X(ippsDFTGetSize_R_64f) X(ippsDFTInit_R_32f) X(ippsDFTInit_R_64f) X(ippsDFTFwd_RToCCS_32f)     \
    X(ippsDFTFwd_RToCCS_64f) X(ippsDFTInv_CCSToR_32f) X(ippsDFTInv_CCSToR_64f) X(ippsWinHann_32f)  \
    X(ippsWinHann_32f_I) X(ippsWinHann_64f) X(ippsWinHann_64f_I) X(ippsWinHamming_32f)             \
    X(ippsWinHamming_32f_I) X(ippsWinHamming_64f) X(ippsWinHamming_64f_I)                          \
    X(ippsWinBlackmanStd_32f) X(ippsWinBlackmanStd_32f_I) X(ippsWinBlackmanStd_64f)                \
    X(ippsWinBlackmanStd_64f_I) X(ippsWinBartlett_32f) X(ippsWinBartlett_32f_I)                    \
    X(ippsWinBartlett_64f) X(ippsWinBartlett_64f_I) X(ippsDotProd_64f) X(ippsIIRInit_BiQuad_32f)   \
    X(ippsIIRInit_BiQuad_64f) X(ippsIIRGetStateSize_BiQuad_32f) X(ippsIIRGetStateSize_BiQuad_64f)  \
    X(ippsIIRGetDlyLine_32f) X(ippsIIRGetDlyLine_64f) X(ippsIIRSetDlyLine_32f)                     \
    X(ippsIIRSetDlyLine_64f) X(ippsIIR_32f) X(ippsIIR_64f) X(ippsIIR_32f_I) X(ippsIIR_64f_I)

// The base functions, from the accelerator's core.
#define ZOLVEX_M_IPP_BASE(X) X(ippFree) X(ippGetL2CacheSize) X(ippGetMaxCacheSizeB)

enum class Fn : uint32_t {
#define ZOLVEX_M_IPP_ENUM(name) name,
    ZOLVEX_M_IPP_TABLE(ZOLVEX_M_IPP_ENUM)
#undef ZOLVEX_M_IPP_ENUM
    count
};

enum class BaseFn : uint32_t {
#define ZOLVEX_M_IPP_ENUM(name) name,
    ZOLVEX_M_IPP_BASE(ZOLVEX_M_IPP_ENUM)
#undef ZOLVEX_M_IPP_ENUM
    count
};

void* table_function(Fn f) noexcept;
void* base_function(BaseFn f) noexcept;

// Signatures of the functions called (IPP's own, with its Ipp32f/Ipp64f
// being float/double and lengths int).
// ippsMulC / ippsDivC, out of place and in place.
template <class T>
using WithConstant = IppStatus (*)(const T* src, T value, T* dst, int len);
template <class T>
using WithConstantInPlace = IppStatus (*)(T value, T* src_dst, int len);
// ippsMinMax, ippsSum and ippsDotProd.
template <class T>
using MinMax = IppStatus (*)(const T* src, int len, T* min, T* max);
template <class T>
using Sum = IppStatus (*)(const T* src, int len, T* sum);
template <class T>
using DotProduct = IppStatus (*)(const T* src1, const T* src2, int len, T* product);

template <class Signature>
Signature table(Fn f) noexcept {
    return reinterpret_cast<Signature>(table_function(f));
}

} // namespace lib::ipp
