#include <KWFoundation/KWKeyedArchiveFormat.h>
#include <KWFoundation/KWKeyedArchiver.h>
#include <KWFoundation/KWLog.h>
#include <KWFoundation/KWUnknownObject.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <stdexcept>
#include <unordered_map>
#include <unordered_set>

namespace {

using Index = KWPropertyList::Index;
using Slot = std::uint32_t;

constexpr Slot nullSlot = 0;

} // namespace

/// An archive in the making: the property list, the slots of "$objects", and the objects whose
/// contents are being written, one inside the other.
struct KWKeyedArchiver::Impl {
    struct Frame {
        std::vector<Index> keys;
        std::vector<Index> values;
    };

    Impl() : slots{list.addString(kwKeyedArchiveNull)} {}

    // --- Slots.

    /// Slots are handed out when an object is first met, before its contents are written.
    Slot reserveSlot() {
        slots.push_back(KWPropertyList::none);
        return static_cast<Slot>(slots.size() - 1);
    }

    Slot reserveSlotFor(const void* identity) {
        const Slot slot = reserveSlot();
        slotOf.emplace(identity, slot);
        return slot;
    }

    // --- References.

    Index referenceTo(const KWArchiveValue& value) {
        if (value.isNil())
            return list.addUID(nullSlot);
        const void* identity = value.identity();
        if (!identity)
            return referenceToNumber(*value.number());
        if (const auto known = slotOf.find(identity); known != slotOf.end()) {
            const auto conditional = conditionals.find(known->second);
            if (conditional == conditionals.end())
                return list.addUID(known->second);
            // Met before, but only conditionally: now it gets its contents.
            conditionals.erase(conditional);
            return referenceToContents(known->second, value);
        }
        alive.push_back(value);
        return referenceToContents(reserveSlotFor(identity), value);
    }

    Index referenceToNumber(const KWNumber& number) {
        const Slot slot = reserveSlot();
        const Index reference = list.addUID(slot);
        slots[slot] = scalar(number);
        return reference;
    }

    void enterLevel() {
        if (++depth > KWArchiveMaximumDepth)
            throw KWArchiveError(KWArchiveError::Kind::unsupported, {}, std::nullopt, {},
                                 "objects are nested more than " +
                                     std::to_string(KWArchiveMaximumDepth) + " deep");
    }

    Index referenceToContents(Slot slot, const KWArchiveValue& value) {
        const Index reference = list.addUID(slot);
        enterLevel();
        if (const auto* string = value.string())
            writeString(slot, *string);
        else if (const auto* data = value.data())
            writeData(slot, *data);
        else if (const auto* array = value.array())
            writeArray(slot, *array);
        else
            writeObject(slot, *value.object());
        --depth;
        return reference;
    }

    Index conditionalReferenceTo(const std::shared_ptr<KWObject>& object) {
        if (!object)
            return list.addUID(nullSlot);
        if (const auto known = slotOf.find(object.get()); known != slotOf.end())
            return list.addUID(known->second);
        alive.emplace_back(object);
        const Slot slot = reserveSlotFor(object.get());
        conditionals.insert(slot);
        return list.addUID(slot);
    }

    // --- Contents.

    Index scalar(const KWNumber& number) {
        switch (number.type()) {
        case KWNumber::Type::boolean:
            return list.addBool(number.boolValue());
        case KWNumber::Type::float32:
            return list.addFloat(number.floatValue());
        case KWNumber::Type::float64:
            return list.addDouble(number.doubleValue());
        case KWNumber::Type::uint64:
            return list.addUnsigned(static_cast<std::uint64_t>(number.int64Value()));
        default:
            return list.addInt(number.int64Value());
        }
    }

    void writeString(Slot slot, const KWArchiveString& string) {
        // A bare "$null" would read back as nil.
        if (!string.isMutable && string.text != kwKeyedArchiveNull) {
            slots[slot] = list.addString(string.text);
            return;
        }
        Frame frame;
        add(frame, "NS.string", list.addString(string.text));
        if (string.isMutable)
            close(slot, frame, mutableStringChain);
        else
            close(slot, frame, stringChain);
    }

    void writeData(Slot slot, const KWArchiveData& data) {
        if (!data.isMutable) {
            slots[slot] = list.addData(data.bytes);
            return;
        }
        Frame frame;
        add(frame, "NS.data", list.addData(data.bytes));
        close(slot, frame, mutableDataChain);
    }

    void writeArray(Slot slot, const KWArchiveArray& array) {
        std::vector<Index> references;
        references.reserve(array.elements.size());
        for (const KWArchiveValue& element : array.elements)
            references.push_back(referenceTo(element));
        closeArray(slot, references, array.isMutable);
    }

    void closeArray(Slot slot, const std::vector<Index>& references, bool isMutable) {
        Frame frame;
        add(frame, "NS.objects", list.addArray(references));
        if (isMutable)
            close(slot, frame, mutableArrayChain);
        else
            close(slot, frame, arrayChain);
    }

    void writeObject(Slot slot, const KWObject& object) {
        if (const KWUnknownObject* unknown = object.unknownContents())
            return writeUnknown(slot, *unknown);
        frames.emplace_back();
        object.encodeWithCoder(*owner);
        Frame frame = std::move(frames.back());
        frames.pop_back();
        const Index key = classKey();
        addKeyNode(frame, key, list.addUID(classSlot(object.isa())));
        slots[slot] = list.addDictionary(frame.keys, frame.values);
    }

    void writeUnknown(Slot slot, const KWUnknownObject& object) {
        if (object.isSequential())
            throw KWArchiveError(KWArchiveError::Kind::unsupported, {}, std::nullopt, {},
                                 "an object of the unknown class \"" + object.className() +
                                     "\" has no keys, which a keyed archive needs");
        Frame frame;
        for (const KWArchiveField& field : object.fields()) {
            frame.keys.push_back(list.addString(field.key));
            frame.values.push_back(fieldNode(field));
        }
        close(slot, frame, object.classChain(), object.classHints());
    }

    Index fieldNode(const KWArchiveField& field) {
        switch (field.form) {
        case KWArchiveField::Form::reference:
            return referenceTo(field.value);
        case KWArchiveField::Form::inlined:
            return inlineNode(field.value);
        case KWArchiveField::Form::list:
        case KWArchiveField::Form::dictionary:
            break;
        }
        enterLevel();
        std::vector<Index> keys;
        std::vector<Index> values;
        for (const KWArchiveField& item : field.items) {
            if (field.form == KWArchiveField::Form::dictionary)
                keys.push_back(list.addString(item.key));
            values.push_back(fieldNode(item));
        }
        --depth;
        return field.form == KWArchiveField::Form::list ? list.addArray(values)
                                                        : list.addDictionary(keys, values);
    }

    Index inlineNode(const KWArchiveValue& value) {
        if (const auto* number = value.number())
            return scalar(*number);
        if (const auto* string = value.string())
            return list.addString(string->text);
        if (const auto* data = value.data())
            return list.addData(data->bytes);
        return list.addNull();
    }

    // --- Closing an object: its class goes last, and the class record behind its first instance.

    void add(Frame& frame, std::string_view key, Index value) {
        addKeyNode(frame, list.addString(key), value);
    }

    static void addKeyNode(Frame& frame, Index key, Index value) {
        if (const auto known = std::ranges::find(frame.keys, key); known != frame.keys.end()) {
            frame.values[static_cast<std::size_t>(known - frame.keys.begin())] = value;
            KWLog("A key was archived twice in one object; its last value is kept");
            return;
        }
        frame.keys.push_back(key);
        frame.values.push_back(value);
    }

    Index classKey() { return list.addString("$class"); }

    void close(Slot slot, Frame& frame, const std::vector<std::string>& chain,
               const std::vector<std::string>& hints = {}) {
        const Index key = classKey();
        addKeyNode(frame, key, list.addUID(classSlot(chain, hints)));
        slots[slot] = list.addDictionary(frame.keys, frame.values);
    }

    Slot classSlot(const KWClass& aClass) {
        if (const auto known = slotOf.find(&aClass); known != slotOf.end())
            return known->second;
        std::vector<std::string> chain;
        for (const KWClass* each = &aClass; each; each = each->superclass())
            chain.emplace_back(each->name());
        const Slot slot = classSlot(chain, {});
        slotOf.emplace(&aClass, slot);
        return slot;
    }

    static std::string chainKey(const std::vector<std::string>& chain,
                                const std::vector<std::string>& hints) {
        std::string key;
        for (const std::string& name : chain)
            key += name + '\0';
        key += '\0';
        for (const std::string& name : hints)
            key += name + '\0';
        return key;
    }

    Slot classSlot(const std::vector<std::string>& chain, const std::vector<std::string>& hints) {
        const auto [known, isNew] = classSlots.try_emplace(chainKey(chain, hints), nullSlot);
        if (!isNew)
            return known->second;
        const Slot slot = known->second = reserveSlot();
        Frame record;
        const auto names = [&](const std::vector<std::string>& texts) {
            std::vector<Index> nodes;
            for (const std::string& text : texts)
                nodes.push_back(list.addString(text));
            return list.addArray(nodes);
        };
        add(record, "$classes", names(chain));
        add(record, "$classname", list.addString(chain.front()));
        if (!hints.empty())
            add(record, "$classhints", names(hints));
        slots[slot] = list.addDictionary(record.keys, record.values);
        return slot;
    }

    // --- What the coder's calls come to.

    /// A list under a key; `element` makes the node of each element in turn.
    template <class Element>
    void encodeList(std::string_view key, std::size_t count, Element element);

    Frame& frame() {
        if (finished)
            throw std::logic_error("the archive has been finished");
        return frames.back();
    }

    /// A key that begins with "$" is stored with one more, apart from the archive's own.
    Index keyNode(std::string_view key) {
        return key.starts_with('$') ? list.addString("$" + std::string(key)) : list.addString(key);
    }

    void finish() {
        if (finished)
            throw std::logic_error("the archive has been finished");
        finished = true;
        for (Index& slot : slots)
            if (slot == KWPropertyList::none)
                slot = slots[nullSlot];
        const Index objects = list.addArray(slots);
        const Frame& top = frames.front();
        const Index keys[] = {list.addString("$version"), list.addString("$top"),
                              list.addString("$archiver"), list.addString("$objects")};
        const Index values[] = {list.addInt(kwKeyedArchiveVersion),
                                list.addDictionary(top.keys, top.values),
                                list.addString("NSKeyedArchiver"), objects};
        list.setRoot(list.addDictionary(keys, values));
    }

    const std::vector<std::string> stringChain{"NSString", "NSObject"};
    const std::vector<std::string> mutableStringChain{"NSMutableString", "NSString", "NSObject"};
    const std::vector<std::string> mutableDataChain{"NSMutableData", "NSData", "NSObject"};
    const std::vector<std::string> arrayChain{"NSArray", "NSObject"};
    const std::vector<std::string> mutableArrayChain{"NSMutableArray", "NSArray", "NSObject"};

    KWKeyedArchiver* owner = nullptr;
    KWPropertyList list;
    std::vector<Index> slots;
    std::vector<Frame> frames{1};
    std::unordered_map<const void*, Slot> slotOf;
    std::unordered_map<std::string, Slot> classSlots;
    /// Slots of objects that have only been met conditionally.
    std::unordered_set<Slot> conditionals;
    /// Everything that has a slot by its address stays alive, so that no address comes twice.
    std::vector<KWArchiveValue> alive;
    int depth = 0;
    bool finished = false;
};

KWKeyedArchiver::KWKeyedArchiver() : _impl(std::make_unique<Impl>()) {
    _impl->owner = this;
}

KWKeyedArchiver::~KWKeyedArchiver() = default;

KWData KWKeyedArchiver::archivedDataWithRootObject(const KWArchiveValue& root, Format format) {
    KWKeyedArchiver archiver;
    archiver.encodeObjectForKey(root, "root");
    return archiver.finishEncoding(format);
}

void KWKeyedArchiver::archiveRootObjectToFile(const KWArchiveValue& root,
                                              const std::filesystem::path& path, Format format) {
    KWKeyedArchiver archiver;
    archiver.encodeObjectForKey(root, "root");
    archiver.finishPropertyList().writeToFile(path, format);
}

KWData KWKeyedArchiver::finishEncoding(Format format) {
    return finishPropertyList().data(format);
}

KWPropertyList KWKeyedArchiver::finishPropertyList() {
    _impl->finish();
    return std::move(_impl->list);
}

void KWKeyedArchiver::encodeObjectForKey(const KWArchiveValue& value, std::string_view key) {
    _impl->frame();
    const Index keyNode = _impl->keyNode(key);
    const Index reference = _impl->referenceTo(value);
    Impl::addKeyNode(_impl->frame(), keyNode, reference);
}

void KWKeyedArchiver::encodeConditionalObjectForKey(const std::shared_ptr<KWObject>& object,
                                                    std::string_view key) {
    Impl::Frame& frame = _impl->frame();
    const Index keyNode = _impl->keyNode(key);
    Impl::addKeyNode(frame, keyNode, _impl->conditionalReferenceTo(object));
}

void KWKeyedArchiver::encodeBoolForKey(bool value, std::string_view key) {
    const Index keyNode = _impl->keyNode(key);
    Impl::addKeyNode(_impl->frame(), keyNode, _impl->list.addBool(value));
}

void KWKeyedArchiver::encodeInt32ForKey(std::int32_t value, std::string_view key) {
    encodeInt64ForKey(value, key);
}

void KWKeyedArchiver::encodeInt64ForKey(std::int64_t value, std::string_view key) {
    const Index keyNode = _impl->keyNode(key);
    Impl::addKeyNode(_impl->frame(), keyNode, _impl->list.addInt(value));
}

void KWKeyedArchiver::encodeFloatForKey(float value, std::string_view key) {
    const Index keyNode = _impl->keyNode(key);
    Impl::addKeyNode(_impl->frame(), keyNode, _impl->list.addFloat(value));
}

void KWKeyedArchiver::encodeDoubleForKey(double value, std::string_view key) {
    const Index keyNode = _impl->keyNode(key);
    Impl::addKeyNode(_impl->frame(), keyNode, _impl->list.addDouble(value));
}

void KWKeyedArchiver::encodeBytesForKey(std::span<const std::byte> bytes, std::string_view key) {
    const Index keyNode = _impl->keyNode(key);
    Impl::addKeyNode(_impl->frame(), keyNode, _impl->list.addData(bytes));
}

// The lists make the very nodes, in the very order, that the general way makes.

template <class Element>
void KWKeyedArchiver::Impl::encodeList(std::string_view key, std::size_t count, Element element) {
    frame();
    const Index keyReference = keyNode(key);
    const Slot slot = reserveSlot();
    const Index reference = list.addUID(slot);
    std::vector<Index> references;
    references.reserve(count);
    for (std::size_t k = 0; k < count; ++k) {
        const Slot elementSlot = reserveSlot();
        references.push_back(list.addUID(elementSlot));
        slots[elementSlot] = element(k);
    }
    closeArray(slot, references, true);
    addKeyNode(frame(), keyReference, reference);
}

void KWKeyedArchiver::encodeFloatsForKey(std::span<const float> list, std::string_view key) {
    _impl->encodeList(key, list.size(),
                      [&](std::size_t k) { return _impl->list.addFloat(list[k]); });
}

void KWKeyedArchiver::encodeRealObjectsForKey(std::span<const float> list,
                                              const KWRealClass& aClass, std::string_view key) {
    std::array<Index, 2> keys{};
    Slot classSlot = nullSlot;
    _impl->encodeList(key, list.size(), [&](std::size_t k) {
        if (k == 0)
            keys[0] = _impl->keyNode(aClass.key);
        std::array<Index, 2> values{_impl->list.addDouble(static_cast<double>(list[k]))};
        if (k == 0) {
            keys[1] = _impl->classKey();
            classSlot = _impl->classSlot(aClass.aClass);
        }
        values[1] = _impl->list.addUID(classSlot);
        return _impl->list.addDictionary(keys, values);
    });
}

void KWKeyedArchiver::encodeRecordsForKey(std::span<const std::byte> list, std::size_t recordSize,
                                          std::string_view key) {
    _impl->encodeList(key, list.size() / recordSize, [&](std::size_t k) {
        return _impl->list.addData(list.subspan(k * recordSize, recordSize));
    });
}
