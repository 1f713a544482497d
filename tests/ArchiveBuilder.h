#pragma once

#include <KWFoundation/KWPropertyList.h>

#include <bit>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Writes keyed archives by hand, object by object, also such as no archiver would write: lists of
/// unequal length, references that lead nowhere, classes that nobody knows.
class ArchiveBuilder {
  public:
    using Index = KWPropertyList::Index;
    using Chain = std::vector<std::string>;
    using Fields = std::vector<std::pair<std::string, Index>>;

    /// The number of an object among the archive's, as references name it.
    using Number = std::uint64_t;

    ArchiveBuilder() : _objects{list.addString("$null")} {}

    /// For the nodes of fields.
    KWPropertyList list;

    /// An object that is filled in later, so that others can refer to it before.
    Number reserve() { return addObject(_objects[0]); }
    void setObject(Number number, Index node) { _objects[static_cast<std::size_t>(number)] = node; }

    Number addObject(Index node) {
        _objects.push_back(node);
        return _objects.size() - 1;
    }
    Number addString(std::string_view text) { return addObject(list.addString(text)); }

    Index reference(Number number) { return list.addUID(number); }

    /// The class's record; one for each call.
    Number addClass(const Chain& chain) {
        std::vector<Index> names;
        for (const std::string& name : chain)
            names.push_back(list.addString(name));
        return addObject(dictionary(
            {{"$classname", list.addString(chain.front())}, {"$classes", list.addArray(names)}}));
    }

    Index dictionary(const Fields& fields) {
        std::vector<Index> keys, values;
        for (const auto& [key, value] : fields) {
            keys.push_back(list.addString(key));
            values.push_back(value);
        }
        return list.addDictionary(keys, values);
    }

    /// The node of an instance of the class.
    Index instance(Number aClass, Fields fields) {
        fields.emplace_back("$class", reference(aClass));
        return dictionary(fields);
    }
    Number addInstance(const Chain& chain, Fields fields) {
        return addObject(instance(classNumber(chain), std::move(fields)));
    }

    Number addList(const std::vector<Number>& elements) {
        std::vector<Index> references;
        for (const Number element : elements)
            references.push_back(reference(element));
        return addInstance({"NSMutableArray", "NSArray", "NSObject"},
                           {{"NS.objects", list.addArray(references)}});
    }

    // --- The model's own classes.

    /// As many of each as there are; they need not match.
    struct Keys {
        std::vector<float> times;
        std::vector<float> values;
        std::vector<std::vector<std::byte>> shapes;
    };

    /// Keys of neutral shapes, one for each time.
    static Keys neutralKeys(std::vector<float> times, std::vector<float> values) {
        const std::size_t count = times.size();
        return {std::move(times), std::move(values),
                std::vector<std::vector<std::byte>>(count, std::vector<std::byte>(36))};
    }

    Number addKeyFramedChannel(std::string_view name, const Keys& keys, std::int32_t mode = 1,
                               std::int32_t repeat = 0) {
        std::vector<Number> times, values, shapes;
        for (const float time : keys.times)
            times.push_back(addInstance({"KWTime", "NSObject"},
                                        {{"time", list.addDouble(static_cast<double>(time))}}));
        for (const float value : keys.values)
            values.push_back(addObject(list.addFloat(value)));
        for (const std::vector<std::byte>& shape : keys.shapes)
            shapes.push_back(addObject(list.addData(shape)));
        return addInstance({"KWKeyFramedChannel", "KWChannel", "NSObject"},
                           {{"name", reference(addString(name))},
                            {"colorIndex", list.addInt(0)},
                            {"channelGroup", reference(0)},
                            {"unitType", list.addInt(32)},
                            {"owner", reference(0)},
                            {"keys", reference(addList(times))},
                            {"values", reference(addList(values))},
                            {"hermiteValues", reference(addList(shapes))},
                            {"mode", list.addInt(mode)},
                            {"repeat", list.addInt(repeat)}});
    }

    Number addConstantChannel(std::string_view name, float value, std::int32_t unitType = 32) {
        return addInstance({"KWConstantChannel", "KWChannel", "NSObject"},
                           {{"name", reference(addString(name))},
                            {"colorIndex", list.addInt(0)},
                            {"channelGroup", reference(0)},
                            {"unitType", list.addInt(unitType)},
                            {"owner", reference(0)},
                            {"constValue", list.addDouble(static_cast<double>(value))}});
    }

    /// `owner` 0 is none.
    Number addAlgebricChannel(std::string_view name, std::int32_t mode = 1, Number owner = 0) {
        const Number interpreter =
            addInstance({"KWAlgebricInterpreter", "NSObject"},
                        {{"algebricString", reference(0)}, {"mode", list.addInt(mode)}});
        return addInstance({"KWAlgebricChannel", "KWChannel", "NSObject"},
                           {{"name", reference(addString(name))},
                            {"colorIndex", list.addInt(0)},
                            {"channelGroup", reference(0)},
                            {"unitType", list.addInt(32)},
                            {"owner", reference(owner)},
                            {"interpreter", reference(interpreter)}});
    }

    Number addGroup(std::string_view name, const std::vector<Number>& channels) {
        return addInstance(
            {"KWChannelGroup", "NSObject"},
            {{"name", reference(addString(name))}, {"channels", reference(addList(channels))}});
    }

    Number addChannelArray(const std::vector<Number>& channels,
                           const std::vector<Number>& groups = {}) {
        return addInstance({"KWChannelArray", "NSObject"},
                           {{"channels", reference(addList(channels))},
                            {"channelGroups", reference(addList(groups))}});
    }

    Number addElement(std::string_view name, Number channelArray) {
        return addInstance(
            {"KWElement", "KWChannelElement", "NSObject"},
            {{"name", reference(addString(name))}, {"channelArray", reference(channelArray)}});
    }

    // --- The end.

    /// The archive with these keys at its top. Nothing can be added afterwards.
    KWData finish(const Fields& top,
                  KWPropertyList::Format format = KWPropertyList::Format::binary) {
        list.setRoot(dictionary({{"$version", list.addInt(100000)},
                                 {"$top", dictionary(top)},
                                 {"$archiver", list.addString("NSKeyedArchiver")},
                                 {"$objects", list.addArray(_objects)}}));
        return list.data(format);
    }
    KWData finishWithRoot(Number root,
                          KWPropertyList::Format format = KWPropertyList::Format::binary) {
        return finish({{"root", reference(root)}}, format);
    }

  private:
    /// The record of a class, made once.
    Number classNumber(const Chain& chain) {
        for (const auto& [known, number] : _classes)
            if (known == chain)
                return number;
        const Number number = addClass(chain);
        _classes.emplace_back(chain, number);
        return number;
    }

    std::vector<Index> _objects;
    std::vector<std::pair<Chain, Number>> _classes;
};
