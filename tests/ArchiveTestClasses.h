#pragma once

#include <KWFoundation/KWBoxedValue.h>
#include <KWFoundation/KWCoder.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

/// A thing with a name, parts of its own, and a peer that it does not own.
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
        coder.encodeObjectForKey(name, "name");
        std::vector<KWArchiveValue> list;
        for (const auto& part : parts)
            list.emplace_back(part);
        coder.encodeObjectForKey(KWArchiveValue::mutableArray(std::move(list)), "parts");
        coder.encodeObjectForKey(other, "other");
        coder.encodeConditionalObjectForKey(peer.lock(), "peer");
        coder.encodeFloatForKey(gain, "gain");
    }
    bool initWithCoder(KWCoder& coder) override {
        name = coder.decodeStringForKey("name").value_or("");
        if (auto list = coder.decodeObjectsOfClassForKey<Part>("parts"))
            parts = std::move(*list);
        other = coder.decodeObjectForKey("other");
        peer = coder.decodeObjectOfClassForKey<Part>("peer");
        gain = coder.decodeFloatForKey("gain");
        return name != "nobody";
    }

    std::string name;
    std::vector<std::shared_ptr<Part>> parts;
    KWArchiveValue other;
    std::weak_ptr<Part> peer;
    float gain = 0;

  private:
    static std::set<Part*>& all() {
        static std::set<Part*> parts;
        return parts;
    }
};

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
