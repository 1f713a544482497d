#include <KWBase/KWAlgebricChannel.h>
#include <KWBase/KWConstantChannel.h>
#include <KWFoundation/KWText.h>
#include <KWFoundation/KWUnarchiver.h>

#include <apps/common/KWChannelKeys.h>
#include <apps/common/KWDocumentCheck.h>

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace {

using Severity = KWDocumentFault::Severity;

std::string numberText(float value) {
    return std::isnan(value) ? "nan" : KWExactStringFromFloat(value);
}

/// What a place is called in a message: its path, and failing that its kind.
std::string called(const std::string& name, const std::string& kind) {
    return name.empty() ? "(" + kind + ")" : name;
}

class Check {
  public:
    explicit Check(const KWDocument& document) : _document(document), _places(document.channels()) {
        for (const KWDocument::Place& place : _places)
            ++_pathCounts[plainPath(place)];
    }

    std::vector<KWDocumentFault> result() {
        checkLists();
        for (std::size_t i = 0; i < _document.elements().size(); ++i)
            checkElement(i);
        return std::move(_faults);
    }

  private:
    void add(Severity severity, const std::string& place, std::string text,
             std::optional<std::size_t> index = std::nullopt) {
        if (index)
            ++*index;
        _faults.push_back({severity, place, index, std::move(text)});
    }
    void fault(const std::string& place, std::string text,
               std::optional<std::size_t> index = std::nullopt) {
        add(Severity::fault, place, std::move(text), index);
    }
    void warn(const std::string& place, std::string text) {
        add(Severity::warning, place, std::move(text));
    }

    void checkLists() {
        for (const KWDocument::Top& top : _document.tops()) {
            if (top.value.isNil())
                fault("", "its " + top.key + " is nil");
            const KWArchiveArray* const list = top.value.array();
            for (std::size_t k = 0; list && k < list->elements.size(); ++k)
                if (list->elements[k].isNil())
                    fault("", "element " + std::to_string(k + 1) + " of its list is nil");
        }
    }

    // --- Elements and groups.

    void checkElement(std::size_t index) {
        const KWDocument::Element& element = _document.elements()[index];
        const std::string name = called(element.name, element.className);
        if (dynamic_cast<const KWElement*>(element.object.get())) {
            if (element.name.empty())
                warn(name, "the element has no name");
            if (!element.channelArray)
                warn(name, "the element has no channels, not even an empty list");
        }
        if (element.channelArray && checkIsUnshared(element, index, name))
            checkArray(*element.channelArray, name);
        if (element.group)
            checkGroup(*element.group, name);

        const KWChannelOwner* firstOwner = nullptr;
        for (; _next < _places.size() && _places[_next].element == index; ++_next) {
            const KWDocument::Place& place = _places[_next];
            checkOwner(place, element, firstOwner);
            checkChannel(place);
            if (!firstOwner)
                firstOwner = place.channel->owner();
        }
    }

    bool checkIsUnshared(const KWDocument::Element& element, std::size_t index,
                         const std::string& name) {
        for (std::size_t i = 0; i < index; ++i) {
            const KWDocument::Element& other = _document.elements()[i];
            if (other.channelArray != element.channelArray)
                continue;
            fault(name, "shares its channels with the element \"" +
                            called(other.name, other.className) + "\"");
            return false;
        }
        return true;
    }

    void checkArray(const KWChannelArray& array, const std::string& name) {
        if (!array.ungroupedChannels())
            warn(name, "has no list of channels without a group, not even an empty one");
        else
            checkForNil(*array.ungroupedChannels(), name);
        if (!array.channelGroups()) {
            warn(name, "has no list of groups, not even an empty one");
            return;
        }
        std::unordered_map<std::string, int> names;
        for (std::size_t k = 0; k < array.channelGroups()->size(); ++k) {
            const KWChannelGroup* const group = (*array.channelGroups())[k].get();
            if (!group) {
                fault(name, "group " + std::to_string(k + 1) + " is nil");
                continue;
            }
            if (group->name().empty())
                warn(name, "group " + std::to_string(k + 1) + " has no name");
            else if (++names[group->name()] == 2)
                warn(name, "several groups are called \"" + group->name() + "\"");
            checkGroup(*group, name + "/" + group->name());
        }
    }

    void checkGroup(const KWChannelGroup& group, const std::string& name) {
        if (!group.channels())
            warn(name, "has no list of channels, not even an empty one");
        else
            checkForNil(*group.channels(), name);
    }

    void checkForNil(const KWChannelList& list, const std::string& name) {
        for (std::size_t k = 0; k < list.size(); ++k)
            if (!list[k])
                fault(name, "channel " + std::to_string(k + 1) + " of the list is nil");
    }

    // --- Channels.

    void checkOwner(const KWDocument::Place& place, const KWDocument::Element& element,
                    const KWChannelOwner* firstOwner) {
        const KWChannelOwner* const owner = place.channel->owner();
        if (const auto* user = dynamic_cast<const KWElement*>(element.object.get())) {
            if (owner != static_cast<const KWChannelOwner*>(user))
                fault(place.path, owner ? "its owner is not its element" : "it has no owner");
        } else if (firstOwner && owner != firstOwner) {
            fault(place.path, "its owner is not that of the channels before it");
        }
    }

    void checkChannel(const KWDocument::Place& place) {
        const KWChannel& channel = *place.channel;
        const auto [first, isNew] = _firstPath.try_emplace(&channel, place.path);
        if (!isNew) {
            fault(place.path, "is the same channel as \"" + first->second + "\"");
            return;
        }
        checkName(place);
        if (kwIsOfUnknownKind(channel)) {
            warn(place.path, "its class \"" + kwClassName(channel) +
                                 "\" is not known here, so it is not looked into");
            return;
        }
        if (channel.channelGroup() != place.group)
            fault(place.path, !place.group ? "it names a group, but stands in none"
                              : channel.channelGroup()
                                  ? "the group it names is not the one it is in"
                                  : "it does not name the group it is in");
        const std::int32_t unit = channel.unitType();
        if (unit != KWUnitTypeLength && unit != KWUnitTypeAngle && unit != KWUnitTypeNone)
            fault(place.path, "unit type " + std::to_string(unit) + " is not known");
        if (const auto* keyFramed = dynamic_cast<const KWKeyFramedChannel*>(&channel))
            checkKeys(place.path, *keyFramed);
        if (const auto* algebric = dynamic_cast<const KWAlgebricChannel*>(&channel))
            checkExpression(place.path, *algebric);
        if (const auto* constant = dynamic_cast<const KWConstantChannel*>(&channel))
            if (const float value = constant->valueForTime(std::nullopt); !std::isfinite(value))
                fault(place.path, "its value " + numberText(value) + " is not finite");
    }

    /// The path without the number that tells apart channels of one path.
    std::string plainPath(const KWDocument::Place& place) const {
        std::string path = _document.elements()[place.element].name;
        const std::string group = place.group ? place.group->name() : std::string();
        for (const std::string& part : {group, place.channel->name()})
            path += (path.empty() || part.empty() ? "" : "/") + part;
        return path;
    }

    void checkName(const KWDocument::Place& place) {
        if (place.channel->name().empty())
            warn(place.path, "the channel has no name");
        if (_pathCounts[plainPath(place)] > 1)
            warn(place.path, "other channels have the same path");
    }

    void checkExpression(const std::string& path, const KWAlgebricChannel& channel) {
        const std::shared_ptr<KWAlgebricInterpreter>& interpreter = channel.interpreter();
        if (!interpreter) {
            fault(path, "it has no interpreter, so it takes no expression");
            return;
        }
        const std::int32_t mode = interpreter->mode();
        if (mode != KWExpressionModeXY && mode != KWExpressionModeT)
            fault(path, "mode " + std::to_string(mode) + " of its expression is not known");
        if (!interpreter->sourceText())
            warn(path, "it has no expression, so it is 0 at every time");
    }

    void checkKeys(const std::string& path, const KWKeyFramedChannel& channel) {
        const std::int32_t mode = channel.keyFrameChannelMode();
        if (mode < KWKeyFrameModeLinear || mode > KWKeyFrameModeStep)
            fault(path, "mode " + std::to_string(mode) + " is not known");
        const std::int32_t repeat = channel.repeatMode();
        if (repeat < KWRepeatModeNone || repeat > KWRepeatModePingPong)
            fault(path, "repeat mode " + std::to_string(repeat) + " is not known");

        const auto count = [](std::size_t number, const std::string& thing) {
            return std::to_string(number) + " " + thing + (number == 1 ? "" : "s");
        };
        const std::string keyCount = count(channel.keyframeCount(), "key");
        if (channel.valueCount() != channel.keyframeCount())
            fault(path, keyCount + ", but " + count(channel.valueCount(), "value"));
        if (channel.hermiteCount() != channel.keyframeCount())
            fault(path, keyCount + ", but " + count(channel.hermiteCount(), "shape"));

        const KWChannelKeys keys = kwKeysOf(channel);
        checkTimes(path, keys.times);
        for (std::size_t k = 0; k < keys.values.size(); ++k)
            if (!std::isfinite(keys.values[k]))
                fault(path, "its value " + numberText(keys.values[k]) + " is not finite", k);
        for (std::size_t k = 0; k < keys.shapes.size(); ++k)
            checkShape(path, keys.shapes[k], k);
        if (const std::string why = kwIrregularity(channel); why.starts_with("the shape"))
            fault(path, why);
    }

    void checkTimes(const std::string& path, const std::vector<float>& times) {
        for (std::size_t k = 0; k < times.size(); ++k) {
            if (!std::isfinite(times[k]))
                fault(path, "its time " + numberText(times[k]) + " is not finite", k);
            if (k == 0 || std::isnan(times[k]) || std::isnan(times[k - 1]))
                continue;
            if (times[k - 1] == times[k])
                fault(path, "its time " + numberText(times[k]) + " is that of the key before too",
                      k);
            else if (times[k - 1] > times[k])
                fault(path,
                      "its time " + numberText(times[k]) + " is before " +
                          numberText(times[k - 1]) + ", that of the key before",
                      k);
        }
    }

    void checkShape(const std::string& path, const HJHermiteParam& shape, std::size_t index) {
        const auto check = [&](const char* what, float value) {
            if (!std::isfinite(value))
                fault(path, std::string("its ") + what + " " + numberText(value) + " is not finite",
                      index);
        };
        check("tension", shape.tension);
        check("bias", shape.bias);
        check("continuity", shape.continuity);
    }

    const KWDocument& _document;
    std::vector<KWDocument::Place> _places;
    std::unordered_map<std::string, int> _pathCounts;
    std::size_t _next = 0;
    std::unordered_map<const KWChannel*, std::string> _firstPath;
    std::vector<KWDocumentFault> _faults;
};

// --- What stands in a keyed archive itself.

using List = KWPropertyList;

List::Index valueUnder(const List& list, List::Index node, std::string_view key) {
    if (node == List::none || list.kind(node) != List::Kind::dictionary)
        return List::none;
    return list.valueForKey(node, key);
}

class StoredShapes {
  public:
    StoredShapes(const List& list, const std::vector<KWDocument::Place>& places)
        : _list(list), _places(places) {
        const List::Index objects = valueUnder(list, list.root(), "$objects");
        if (objects != List::none && list.kind(objects) == List::Kind::array)
            _objects = list.children(objects);
    }

    std::vector<KWDocumentFault> result() const {
        std::vector<KWDocumentFault> faults;
        for (std::size_t i = 0; i < _objects.size(); ++i) {
            const List::Index shapes = elementsUnder(_objects[i], "hermiteValues");
            if (shapes == List::none)
                continue;
            const auto records = _list.children(shapes);
            std::string place;
            for (std::size_t k = 0; k < records.size(); ++k) {
                const std::optional<std::size_t> size = dataSize(records[k]);
                if (!size || *size == sizeof(HJHermiteParam))
                    continue;
                if (place.empty())
                    place = placeOf(i);
                faults.push_back({Severity::fault, place, k + 1,
                                  "its shape has " + std::to_string(*size) + " bytes instead of " +
                                      std::to_string(sizeof(HJHermiteParam))});
            }
        }
        return faults;
    }

  private:
    /// What a reference leads to, or the node itself.
    List::Index resolved(List::Index node) const {
        if (node == List::none || _list.kind(node) != List::Kind::uid)
            return node;
        const std::uint64_t number = _list.uidValue(node);
        return number < _objects.size() ? _objects[static_cast<std::size_t>(number)] : List::none;
    }

    List::Index elementsUnder(List::Index node, std::string_view key) const {
        const List::Index list = resolved(valueUnder(_list, node, key));
        const List::Index elements = valueUnder(_list, list, "NS.objects");
        return elements != List::none && _list.kind(elements) == List::Kind::array ? elements
                                                                                   : List::none;
    }

    std::optional<std::size_t> dataSize(List::Index node) const {
        node = resolved(node);
        if (node != List::none && _list.kind(node) == List::Kind::dictionary)
            node = resolved(_list.valueForKey(node, "NS.data"));
        if (node == List::none || _list.kind(node) != List::Kind::data)
            return std::nullopt;
        return _list.dataValue(node).size();
    }

    /// The path of the only channel of that name, else the name and the object's number.
    std::string placeOf(std::size_t object) const {
        const List::Index node = resolved(valueUnder(_list, _objects[object], "name"));
        const bool isText = node != List::none && _list.kind(node) == List::Kind::string;
        const std::string name(isText ? _list.stringValue(node) : std::string_view());
        const KWDocument::Place* found = nullptr;
        for (const KWDocument::Place& place : _places)
            if (place.channel->name() == name) {
                if (found)
                    return name + " (object " + std::to_string(object) + ")";
                found = &place;
            }
        return found ? found->path : name + " (object " + std::to_string(object) + ")";
    }

    const List& _list;
    const std::vector<KWDocument::Place>& _places;
    std::span<const List::Index> _objects;
};

} // namespace

std::string KWDocumentFault::line() const {
    return (place.empty() ? std::string() : place + ": ") +
           (key ? "key " + std::to_string(*key) + ": " : std::string()) + text;
}

std::vector<KWDocumentFault> kwCheckDocument(const KWDocument& document) {
    return Check(document).result();
}

std::vector<KWDocumentFault> kwCheckStoredShapes(std::span<const std::byte> bytes,
                                                 const KWDocument& document) {
    if (document.form() == KWDocument::Form::sequential || KWUnarchiver::isArchive(bytes))
        return {};
    const std::vector<KWDocument::Place> places = document.channels();
    return StoredShapes(KWPropertyList::parse(bytes, document.file()), places).result();
}
