#pragma once

#include <KWFoundation/KWExport.h>

#include <span>

/// The instruction sets that the vector code is compiled for, the better the greater. Other
/// processors than Intel's and AMD's know the baseline alone, which is what the compiler was told.
enum class KWVectorTarget { baseline, ssse3, sse4, avx2, avx512 };

/// Those that this processor and its system have, the best first; the baseline is the last.
KW_EXPORT std::span<const KWVectorTarget> KWVectorTargets();

/// What vector code is to use: the best of those, or the one that KWUseVectorTarget has set.
KW_EXPORT KWVectorTarget KWVectorTargetInUse();

/// For tests and for measurements. No other thread may run vector code meanwhile.
KW_EXPORT void KWUseVectorTarget(KWVectorTarget target);

KW_EXPORT const char* KWVectorTargetName(KWVectorTarget target);
