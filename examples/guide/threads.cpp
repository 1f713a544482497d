#include "Expect.h"

#include <KWBase/KWChannelArray.h>
#include <KWBase/KWChannelCursor.h>
#include <KWBase/KWKeyFramedChannel.h>

#include <thread>
#include <vector>

int main() {
    const auto channel = std::make_shared<KWKeyFramedChannel>("level");
    for (int k = 0; k < 100; ++k)
        channel->setValueForKeyframe(static_cast<float>(k % 7), KWTime(static_cast<float>(k)));

    //! [readers]
    // Nobody edits meanwhile: const members may be called from several threads.
    std::vector<float> sums(4);
    std::vector<std::thread> readers;
    for (std::size_t part = 0; part < sums.size(); ++part)
        readers.emplace_back([&sums, part, shared = std::shared_ptr<const KWChannel>(channel)] {
            KWChannelCursor cursor(shared); // each thread has its own
            for (int frame = 0; frame < 1000; ++frame)
                sums[part] += cursor.valueForTime(KWTime(static_cast<float>(frame) / 25));
        });
    for (std::thread& reader : readers)
        reader.join();
    //! [readers]
    expect(sums[0] == sums[3], "every thread reads the same");

    //! [snapshot]
    // Edited meanwhile: the reader has a copy, made by the thread that edits.
    const std::shared_ptr<const KWChannel> snapshot = channel->copy();
    std::thread player([snapshot, &sums] { sums[0] = snapshot->valueForTime(KWTime(3)); });
    channel->setValueForKeyframe(100, KWTime(3));
    player.join();
    //! [snapshot]
    expect(sums[0] == 3, "the copy stays what it was");
}
