#include "Expect.h"

#include <KWBase/KWAlgebricChannel.h>
#include <KWBase/KWChannelArray.h>
#include <KWBase/KWChannelCursor.h>
#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWFoundation/KWNotificationCenter.h>

#include <vector>

int main() {
    //! [kinds]
    auto height = std::make_shared<KWKeyFramedChannel>("height");
    height->setValueForKeyframe(0, KWTime(0));    // 0 m at 0 s
    height->setValueForKeyframe(1.5f, KWTime(2)); // 1.5 m at 2 s
    height->setUnitType(KWUnitTypeLength);
    height->setRepeatMode(KWRepeatModePingPong);

    auto sway = std::make_shared<KWAlgebricChannel>("sway");
    if (!sway->setExpression("sin(t)*exp(-t/3)"))
        std::cerr << sway->fault().sentence() << '\n';

    auto hue = std::make_shared<KWConstantChannel>("hue");
    hue->setValueForTime(0.1f, KWTime(0));
    //! [kinds]

    //! [shape]
    const HJHermiteParam sharp{.tension = 1}; // flat tangents
    height->modifyHermiteParamForKeyframe(&sharp, KWTime(2));
    height->setKeyFrameChannelMode(KWKeyFrameModeHermite);
    //! [shape]

    //! [array]
    auto channels = std::make_shared<KWChannelArray>();
    channels->addChannel(hue);
    channels->addGroupWithName("Position");
    const std::uint32_t position = channels->indexOfGroupNamed("Position");
    channels->addChannelToGroup(height, position);
    channels->addChannelToGroup(sway, position);
    for (const auto& channel : channels->channelEnumerator())
        std::cout << channel->name() << " is " << channel->valueForTime(KWTime(1)) << " at 1 s\n";
    //! [array]

    //! [reading]
    // One time.
    const float atOne = height->valueForTime(KWTime(1));

    // One time after the other, as a player asks: a cursor for each channel and thread.
    KWChannelCursor cursor(height);
    float highest = 0;
    for (int frame = 0; frame < 250; ++frame)
        highest = std::max(highest, cursor.valueForTime(KWTime(static_cast<float>(frame) / 25)));

    // Many times at once, which uses the processor's vectors.
    std::vector<float> times(48000), samples(48000);
    for (std::size_t k = 0; k < times.size(); ++k)
        times[k] = static_cast<float>(k) / 48000;
    height->valuesForTimes(times, samples);
    //! [reading]
    expect(samples[0] == height->valueForTime(KWTime(0)), "all ways answer the same");
    expect(highest == 1.5f, "the highest is the second key");
    expect(atOne > 0 && atOne < 1.5f, "the curve is between its keys");

    //! [kept]
    for (const auto& channel : channels->channelEnumerator())
        channel->updateForTime(KWTime(0.5f));
    const float shown = height->value(); // computed once, by updateForTime()
    //! [kept]
    expect(shown == height->valueForTime(KWTime(0.5f)), "the kept value is that of the time");

    //! [changes]
    bool isDirty = false;
    const KWNotificationToken token = KWNotificationCenter::defaultCenter().addObserver(
        KWChannelChangedNotification, height.get(),
        [&isDirty](const KWNotification&) { isDirty = true; }); // read later, not here
    height->setValueForTime(2, KWTime(3));
    //! [changes]
    expect(isDirty, "the observer was told");
}
