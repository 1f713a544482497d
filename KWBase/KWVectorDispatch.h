#pragma once

#include <KWBase/KWVectorTarget.h>

#ifndef HWY_TARGETS
#error "a source that is compiled for each target includes this last"
#endif

/// Calls a function of each target's namespace, which sources that Highway compiles once for each
/// target have; to be used in a function that returns its answer, in the last of those passes.
/// Unlike Highway's own dispatch it needs nothing of Highway's library, whose start measures the
/// processor's clock for milliseconds.
#define KW_RETURN_FOR_VECTOR_TARGET(call)                                                          \
    switch (KWVectorTargetInUse()) {                                                               \
        KW_CASE_AVX512(call)                                                                       \
        KW_CASE_AVX2(call)                                                                         \
        KW_CASE_SSE4(call)                                                                         \
        KW_CASE_SSSE3(call)                                                                        \
    default:                                                                                       \
        return HWY_STATIC_DISPATCH(call);                                                          \
    }

// A target that the compiler lacks, or that is the baseline, has no case.
#if (HWY_TARGETS & ~HWY_STATIC_TARGET) & HWY_AVX3
#define KW_CASE_AVX512(call)                                                                       \
    case KWVectorTarget::avx512:                                                                   \
        return N_AVX3::call;
#else
#define KW_CASE_AVX512(call)
#endif
#if (HWY_TARGETS & ~HWY_STATIC_TARGET) & HWY_AVX2
#define KW_CASE_AVX2(call)                                                                         \
    case KWVectorTarget::avx2:                                                                     \
        return N_AVX2::call;
#else
#define KW_CASE_AVX2(call)
#endif
#if (HWY_TARGETS & ~HWY_STATIC_TARGET) & HWY_SSE4
#define KW_CASE_SSE4(call)                                                                         \
    case KWVectorTarget::sse4:                                                                     \
        return N_SSE4::call;
#else
#define KW_CASE_SSE4(call)
#endif
#if (HWY_TARGETS & ~HWY_STATIC_TARGET) & HWY_SSSE3
#define KW_CASE_SSSE3(call)                                                                        \
    case KWVectorTarget::ssse3:                                                                    \
        return N_SSSE3::call;
#else
#define KW_CASE_SSSE3(call)
#endif
