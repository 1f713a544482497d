#include <KWBase/KWChannelArray.h>
#include <KWFoundation/KWKeyedUnarchiver.h>

#include <iostream>

// Reads channels of every kind while naming none: the kinds must be known to the archives all the
// same, also where the linker takes from a static library only what is asked for.
int main(int argc, char** argv) {
    if (argc != 2)
        return 2;
    const auto root = KWKeyedUnarchiver::unarchiveValueWithFile(argv[1]).object();
    const auto array = std::dynamic_pointer_cast<KWChannelArray>(root);
    if (!array)
        return 1;
    const auto channels = array->channelEnumerator();
    for (const auto& channel : channels)
        std::cout << channel->isa().name() << ' ' << channel->name() << ' '
                  << channel->valueForTime(KWTime(1)) << '\n';
}
