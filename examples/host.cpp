#include <KWBase/KWChannelArray.h>
#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWFoundation/KWKeyedArchiver.h>
#include <KWFoundation/KWKeyedUnarchiver.h>

#include <iostream>

int main() {
    auto glow = std::make_shared<KWKeyFramedChannel>("glow");
    glow->setValueForKeyframe(0, KWTime(0)); // dark at 0 s
    glow->setValueForKeyframe(1, KWTime(2)); // bright at 2 s
    glow->setRepeatMode(KWRepeatModePingPong);

    auto lamp = std::make_shared<KWChannelArray>();
    lamp->addChannel(glow);
    // 0.1 at every time, to be drawn in the colour of index 1, yellow.
    lamp->addChannel(channelWithNameInitialValueColor<KWConstantChannel>("hue", 0.1f, 1));
    KWKeyedArchiver::archiveRootObjectToFile(lamp, "lamp.plist");

    auto saved = std::dynamic_pointer_cast<KWChannelArray>(
        KWKeyedUnarchiver::unarchiveObjectWithFile("lamp.plist"));
    for (float time = 0; time <= 4; time += 1)
        for (const auto& channel : saved->channelEnumerator())
            std::cout << time << " s: " << channel->name() << " is " << channel->valueForTime(time)
                      << '\n';
}
