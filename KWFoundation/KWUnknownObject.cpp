#include <KWFoundation/KWUnknownObject.h>

#include <algorithm>

const KWClass& KWUnknownObject::classObject() {
    static constinit KWClass theClass{"KWUnknownObject", &KWObject::classObject, 0, nullptr};
    return theClass;
}

const KWArchiveField* KWUnknownObject::field(std::string_view key) const {
    const auto found = std::ranges::find(_fields, key, &KWArchiveField::key);
    return found == _fields.end() ? nullptr : &*found;
}
