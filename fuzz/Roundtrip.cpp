#include "Roundtrip.h"

#include <KWBase/KWChannelArray.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWFoundation/KWArchiver.h>
#include <KWFoundation/KWException.h>
#include <KWFoundation/KWKeyedArchiver.h>
#include <KWFoundation/KWLog.h>

#include <apps/common/KWElement.h>

#include <stdexcept>

namespace {

void evaluate(const KWChannelArray& array) {
    for (const auto& channel : array.channelEnumerator()) {
        for (const float time : {-1.0f, 0.0f, 0.5f, 1e30f}) {
            try {
                channel->valueForTime(KWTime(time));
            } catch (const std::out_of_range&) { // an irregular channel
            } catch (const KWException&) {
            }
        }
    }
}

void evaluate(const KWArchiveValue& value, int depth) {
    if (const auto* list = value.array(); list && depth < 4)
        for (const KWArchiveValue& element : list->elements)
            evaluate(element, depth + 1);
    const auto object = value.object();
    if (const auto array = std::dynamic_pointer_cast<KWChannelArray>(object))
        evaluate(*array);
    else if (const auto element = std::dynamic_pointer_cast<KWElement>(object))
        if (const auto channels = element->channelArray())
            evaluate(*channels);
}

} // namespace

void KWPrepareFuzzing() {
    static const bool isReady = [] {
        kwRegisterElementClass();
        KWSetLogHandler([](std::string_view) {});
        return true;
    }();
    (void)isReady;
}

void KWUseArchive(const KWArchiveValue& root, bool sequential) {
    evaluate(root, 0);
    try {
        if (sequential)
            KWArchiver::archivedDataWithRootObject(root);
        else
            KWKeyedArchiver::archivedDataWithRootObject(root);
    } catch (const KWArchiveError&) {
    } catch (const KWException&) { // lists of different lengths
    }
}
