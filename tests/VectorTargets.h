#pragma once

#include <KWBase/KWVectorTarget.h>

/// Calls the function with the name of every instruction set that this processor has, the best
/// first, while vector code uses that set.
template <class Function>
void underEachTarget(Function function) {
    for (const KWVectorTarget target : KWVectorTargets()) {
        KWUseVectorTarget(target);
        function(KWVectorTargetName(target));
    }
    KWUseVectorTarget(KWVectorTargets().front());
}
