#pragma once

#include "TestFiles.h"

#include <KWFoundation/KWBoxedValue.h>
#include <KWFoundation/KWCoder.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

/// A class of one real number.
struct Moment {
    float seconds = 0;
};

template <>
struct KWValueClass<Moment> {
    static const KWClass& classObject() {
        static constinit KWClass theClass{"Moment", &KWObject::classObject, 0,
                                          KWClass::make<KWBoxedValue<Moment>>};
        return theClass;
    }
    static void encode(const Moment& moment, KWCoder& coder) {
        if (coder.allowsKeyedCoding())
            coder.encodeDoubleForKey(static_cast<double>(moment.seconds), "seconds");
        else
            coder.encodeValueOfObjCTypeAt("f", &moment.seconds);
    }
    static bool decode(Moment& moment, KWCoder& coder) {
        if (coder.allowsKeyedCoding())
            moment.seconds = static_cast<float>(coder.decodeDoubleForKey("seconds"));
        else
            coder.decodeValueOfObjCTypeAt("f", &moment.seconds);
        return true;
    }
    static KWRealClass realClass() {
        return {classObject(), "seconds",
                [](float seconds) -> std::shared_ptr<KWObject> {
                    return std::make_shared<KWBoxedValue<Moment>>(Moment{seconds});
                },
                [](const KWObject& object) {
                    return dynamic_cast<const KWBoxedValue<Moment>&>(object).value.seconds;
                }};
    }
};

/// A thing with a name, parts of its own, a peer that it does not own, and lists of small things.
class Part : public KWObject {
  public:
    explicit Part(std::string initial = {}) : name(std::move(initial)) { all().insert(this); }
    ~Part() override { all().erase(this); }

    /// Lets go of what parts hold of each other; an archive may have made them hold themselves.
    static void partAll() {
        std::vector<std::shared_ptr<KWObject>> kept;
        for (Part* part : all())
            kept.push_back(part->weak_from_this().lock());
        for (const auto& part : kept) {
            std::static_pointer_cast<Part>(part)->parts.clear();
            std::static_pointer_cast<Part>(part)->other = nullptr;
        }
    }

    static const KWClass& classObject() {
        static constinit KWClass theClass{"Part", &KWObject::classObject, 3, KWClass::make<Part>};
        return theClass;
    }
    const KWClass& isa() const override { return classObject(); }

    void encodeWithCoder(KWCoder& coder) const override {
        const auto list = KWArchiveValue::mutableArray({parts.begin(), parts.end()});
        if (!coder.allowsKeyedCoding()) {
            coder.encodeObject(name);
            coder.encodeConditionalObject(peer.lock());
            coder.encodeObject(list);
            coder.encodeObject(other);
            coder.encodeValueOfObjCTypeAt("f", &gain);
            coder.encodeFloats(numbers);
            coder.encodeRealObjects(moments, KWValueClass<Moment>::realClass());
            coder.encodeRecords(records, recordSize);
            return;
        }
        coder.encodeObjectForKey(name, "name");
        coder.encodeObjectForKey(list, "parts");
        coder.encodeObjectForKey(other, "other");
        coder.encodeConditionalObjectForKey(peer.lock(), "peer");
        coder.encodeFloatForKey(gain, "gain");
        if (!numbers.empty())
            coder.encodeFloatsForKey(numbers, "numbers");
        if (!moments.empty())
            coder.encodeRealObjectsForKey(moments, KWValueClass<Moment>::realClass(), "moments");
        if (!records.empty())
            coder.encodeRecordsForKey(records, recordSize, "records");
    }
    bool initWithCoder(KWCoder& coder) override {
        if (coder.allowsKeyedCoding())
            readWithKeys(coder);
        else
            readInOrder(coder);
        return name != "nobody";
    }

    std::string name;
    std::vector<std::shared_ptr<Part>> parts;
    KWArchiveValue other;
    std::weak_ptr<Part> peer;
    float gain = 0;
    std::vector<float> numbers;
    std::vector<float> moments;
    KWData records; ///< of `recordSize` bytes each
    static constexpr std::size_t recordSize = 8;

  private:
    void readWithKeys(KWCoder& coder) {
        name = coder.decodeStringForKey("name").value_or("");
        if (auto list = coder.decodeObjectsOfClassForKey<Part>("parts"))
            parts = std::move(*list);
        other = coder.decodeObjectForKey("other");
        peer = coder.decodeBackPointerOfClassForKey<Part>("peer");
        gain = coder.decodeFloatForKey("gain");
        coder.decodeFloatsForKey(numbers, "numbers");
        coder.decodeRealObjectsForKey(moments, KWValueClass<Moment>::realClass(), "moments");
        coder.decodeRecordsForKey(records, recordSize, "records");
    }
    void readInOrder(KWCoder& coder) {
        name = coder.decodeString("name").value_or("");
        peer = coder.decodeBackPointerOfClass<Part>("peer");
        if (auto list = coder.decodeObjectsOfClass<Part>("parts"))
            parts = std::move(*list);
        other = coder.decodeObject();
        coder.decodeValueOfObjCTypeAt("f", &gain);
        coder.decodeFloats(numbers);
        coder.decodeRealObjects(moments, KWValueClass<Moment>::realClass());
        coder.decodeRecords(records, recordSize);
    }
    static std::set<Part*>& all() {
        static std::set<Part*> parts;
        return parts;
    }
};

/// The worked examples of both forms: a keyframed channel's class with a few values.
class Example final : public KWObject {
  public:
    static const KWClass& baseClass() {
        static constinit KWClass theClass{"KWChannel", &KWObject::classObject, 2, nullptr};
        return theClass;
    }
    const KWClass& isa() const override {
        static constinit KWClass theClass{"KWKeyFramedChannel", &baseClass, 1, nullptr};
        return theClass;
    }
    void encodeWithCoder(KWCoder& coder) const override {
        const KWArchiveValue name("gain");
        const auto peer = std::make_shared<Part>("peer");
        const float gain = 0.5F;
        if (coder.allowsKeyedCoding()) {
            coder.encodeObjectForKey(name, "name");
            coder.encodeConditionalObjectForKey(peer, "peer");
            coder.encodeFloatForKey(gain, "gain");
            coder.encodeInt32ForKey(-5, "keys");
            coder.encodeDoubleForKey(2.0, "d");
            coder.encodeBoolForKey(true, "on");
            return;
        }
        const std::int32_t count = 300;
        const double two = 2;
        const char on = 1;
        coder.encodeObject(name);
        coder.encodeConditionalObject(peer);
        coder.encodeValueOfObjCTypeAt("f", &gain);
        coder.encodeValueOfObjCTypeAt("i", &count);
        coder.encodeValueOfObjCTypeAt("d", &two);
        coder.encodeValueOfObjCTypeAt("c", &on);
        const auto self = std::const_pointer_cast<KWObject>(shared_from_this());
        coder.encodeObject(
            KWArchiveValue::mutableArray({KWNumber(1.5F), KWNumber(7.0F), name, self}));
        coder.encodeObject(dataOf("abc"));
    }
};

/// Has a class known for as long as it lives.
class Registration {
  public:
    explicit Registration(const KWClass& aClass) : _class(aClass) { KWRegisterClass(aClass); }
    ~Registration() { KWUnregisterClass(_class); }
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;

  private:
    const KWClass& _class;
};
