#include <KWFoundation/KWArchiver.h>
#include <KWFoundation/KWUnarchiver.h>

#include <apps/common/KWDocument.h>
#include <apps/common/KWGraphWalk.h>
#include <apps/common/KWStreamValue.h>

#include <algorithm>

// Documents in the sequential form.

void KWDocument::readStream(std::span<const std::byte> bytes) {
    _form = Form::sequential;
    KWUnarchiver unarchiver(bytes, {.keepsUnknownObjects = true}, _file);
    _tops.push_back({"root", unarchiver.decodeObject()});
    while (!unarchiver.isAtEnd())
        _furtherValues.push_back(unarchiver.decodeAnything());
}

KWData KWDocument::sequentialData(const KWClassVersions& versions) const {
    KWArchiver archiver;
    for (const auto& [name, version] : writtenVersions(versions))
        archiver.setVersionForClassName(version, name);
    archiver.encodeRootObject(kwRootOf(*this));
    for (const KWArchiveField& value : _furtherValues)
        if (!kwEncodeStreamValue(value, archiver))
            cannotBeWritten("the value of the types \"" + value.key +
                            "\" behind the root cannot be written");
    return archiver.archiverData();
}

KWClassVersions KWDocument::writtenVersions(const KWClassVersions& wanted) const {
    KWClassVersions versions = wanted;
    KWClassVersions archived;
    const auto take = [&archived](const KWArchiveValue& value) {
        const auto object = value.object();
        const KWUnknownObject* const contents = object ? object->unknownContents() : nullptr;
        if (!contents || !contents->isSequential())
            return;
        for (std::size_t k = 0; k < contents->classChain().size(); ++k)
            if (KWClassNamed(contents->classChain()[k]))
                archived.try_emplace(contents->classChain()[k], contents->classVersions()[k]);
    };
    if (_form == Form::sequential) {
        kwWalkGraph(_tops.front().value, take);
        kwWalkGraph(kwReferencesOf(_furtherValues), take);
    }
    for (const auto& [name, version] : archived) {
        const auto [other, isNew] = versions.try_emplace(name, version);
        if (!isNew && other->second != version)
            cannotBeWritten("objects of unknown classes hold version " + std::to_string(version) +
                            " of the class \"" + name + "\", so it cannot be written as version " +
                            std::to_string(other->second));
    }
    const bool hasAttributes =
        std::any_of(_elements.begin(), _elements.end(), [](const Element& each) {
            const auto* const ours = dynamic_cast<const KWElement*>(each.object.get());
            return ours && !ours->attributes().empty();
        });
    if (hasAttributes)
        versions.try_emplace("KWElement", 2);
    return versions;
}

KWArchiveValue kwRootOf(const KWDocument& document) {
    const KWDocument::Top* root = nullptr;
    for (const KWDocument::Top& top : document.tops())
        if (!root || top.key == "root")
            root = &top;
    return root ? root->value : KWArchiveValue();
}

bool kwEncodeStreamValue(const KWArchiveField& group, KWArchiver& archiver) {
    if (group.items.size() != 1)
        return false;
    const std::string& type = group.key;
    const KWArchiveValue& value = group.items.front().value;
    if (type == "@") {
        archiver.encodeRootObject(value);
        return true;
    }
    if (type == "*") {
        std::optional<std::string> text;
        if (value.string())
            text = value.string()->text;
        archiver.encodeValueOfObjCTypeAt("*", &text);
        return true;
    }
    if (const KWArchiveData* bytes = value.data()) {
        if (type == "+")
            archiver.encodeBytes(bytes->bytes);
        else if (type.ends_with("c]") || type.ends_with("C]"))
            archiver.encodeArrayOfObjCTypeCountAt(type.ends_with("c]") ? "c" : "C",
                                                  static_cast<std::uint32_t>(bytes->bytes.size()),
                                                  bytes->bytes.data());
        else
            return false;
        return true;
    }
    const KWNumber* const number = value.number();
    if (!number || type.size() != 1)
        return false;
    const float single = number->floatValue();
    const double real = number->doubleValue();
    const std::int64_t integer = number->int64Value(); // its low bytes come first in memory
    archiver.encodeValueOfObjCTypeAt(type.c_str(), type == "f"   ? static_cast<const void*>(&single)
                                                   : type == "d" ? static_cast<const void*>(&real)
                                                                 : &integer);
    return true;
}
