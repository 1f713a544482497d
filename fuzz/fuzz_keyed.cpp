#include "Roundtrip.h"

#include <KWFoundation/KWKeyedUnarchiver.h>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    KWPrepareFuzzing();
    const std::span<const std::byte> bytes(reinterpret_cast<const std::byte*>(data), size);
    for (const bool keeps : {false, true}) {
        try {
            KWUseArchive(
                KWKeyedUnarchiver::unarchiveValueWithData(bytes, {.keepsUnknownObjects = keeps}),
                false);
        } catch (const KWArchiveError&) {
        }
    }
    try {
        const KWPropertyList list = KWPropertyList::parse(bytes);
        static_cast<void>(list.data(KWPropertyList::Format::binary));
        static_cast<void>(list.data(KWPropertyList::Format::xml));
    } catch (const KWArchiveError&) {
    }
    return 0;
}
