#include <KWBase/KWAlgebricChannel.h>
#include <KWBase/KWChannelArray.h>
#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWKeyFramedChannel.h>

bool KWRegisterChannelClasses();

/// Makes the model known to the archives; true, for the sake of the static that calls it.
bool KWRegisterChannelClasses() {
    KWRegisterClass(KWValueClass<KWTime>::classObject());
    KWRegisterClass(KWChannel::classObject());
    KWRegisterClass(KWConstantChannel::classObject());
    KWRegisterClass(KWKeyFramedChannel::classObject());
    KWRegisterClass(KWAlgebricInterpreter::classObject());
    KWRegisterClass(KWAlgebricChannel::classObject());
    KWRegisterClass(KWChannelGroup::classObject());
    KWRegisterClass(KWChannelArray::classObject());
    return true;
}
