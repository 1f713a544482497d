// A program that does nothing, and would use the standard library; one of the two is linked to the
// channels, and would use them.

#ifdef KWBASE_LINKS_CHANNELS

#include <KWBase/KWKeyFramedChannel.h>

int main(int count, char**) {
    if (count < 2)
        return 0;
    return static_cast<int>(std::make_shared<KWKeyFramedChannel>()->valueForTime(KWTime(0)));
}

#else

#include <memory>
#include <stdexcept>
#include <string>

int main(int count, char** words) {
    if (count < 2)
        return 0;
    throw std::runtime_error(*std::make_shared<std::string>(words[1]));
}

#endif
