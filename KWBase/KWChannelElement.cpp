#include <KWBase/KWChannelElement.h>

const KWClass& KWChannelElement::classObject() {
    static constinit const KWClass theClass{"KWChannelElement", &KWObject::classObject, 0, nullptr};
    return theClass;
}
