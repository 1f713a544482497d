#include "Roundtrip.h"

#include <KWFoundation/KWUnarchiver.h>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    KWPrepareFuzzing();
    const std::span<const std::byte> bytes(reinterpret_cast<const std::byte*>(data), size);
    for (const KWUnarchivingOptions options :
         {KWUnarchivingOptions{}, KWUnarchivingOptions{.keepsUnknownObjects = true},
          KWUnarchivingOptions{.knowsNoClasses = true}}) {
        try {
            KWUnarchiver unarchiver(bytes, options);
            KWUseArchive(unarchiver.decodeObject(), true);
            while (!unarchiver.isAtEnd())
                unarchiver.decodeAnything();
        } catch (const KWArchiveError&) {
        }
    }
    return 0;
}
