#include <KWFoundation/KWCoder.h>
#include <KWFoundation/KWException.h>

#include <apps/common/KWGraphWalk.h>

#include <unordered_set>

namespace {

/// Takes what one object encodes. Values without keys are the smaller half of what a class writes,
/// and the objects among them are the same.
class Collector final : public KWCoder {
  public:
    bool allowsKeyedCoding() const override { return false; }
    std::int64_t versionForClassName(std::string_view className) const override {
        const KWClass* const known = KWClassNamed(className);
        return known ? known->version() : std::int64_t{KWNotFound};
    }

    void encodeObject(const KWArchiveValue& value) override { values.push_back(value); }
    void encodeConditionalObject(const std::shared_ptr<KWObject>&) override {}
    void encodeValuesOfObjCTypesAt(const char* types,
                                   std::initializer_list<const void*> addresses) override {
        // Objects are written one to a call, as a rule.
        if (std::string_view(types) == "@" && addresses.size() == 1)
            values.push_back(*static_cast<const KWArchiveValue*>(*addresses.begin()));
    }
    void encodeArrayOfObjCTypeCountAt(const char*, std::uint32_t, const void*) override {}
    void encodeBytes(std::span<const std::byte>) override {}
    void encodeDataObject(std::span<const std::byte>) override {}
    void encodeFloats(std::span<const float>) override {}
    void encodeRealObjects(std::span<const float>, const KWRealClass&) override {}
    void encodeRecords(std::span<const std::byte>, std::size_t) override {}

    std::vector<KWArchiveValue> values;
};

void collectReferences(const std::vector<KWArchiveField>& fields,
                       std::vector<KWArchiveValue>& values) {
    std::vector<const KWArchiveField*> waiting;
    const auto push = [&waiting](const std::vector<KWArchiveField>& list) {
        for (auto field = list.rbegin(); field != list.rend(); ++field)
            waiting.push_back(&*field);
    };
    push(fields);
    while (!waiting.empty()) {
        const KWArchiveField& field = *waiting.back();
        waiting.pop_back();
        if (field.form == KWArchiveField::Form::reference)
            values.push_back(field.value);
        push(field.items);
    }
}

/// Numbers, strings and data hold nothing.
std::vector<KWArchiveValue> contentsOf(const KWArchiveValue& value) {
    if (const KWArchiveArray* list = value.array())
        return list->elements;
    std::vector<KWArchiveValue> values;
    const std::shared_ptr<KWObject> object = value.object();
    if (!object)
        return values;
    if (const KWUnknownObject* contents = object->unknownContents()) {
        collectReferences(contents->fields(), values);
        return values;
    }
    Collector collector;
    try {
        object->encodeWithCoder(collector);
    } catch (const KWException&) {
        // Such as a channel with more keys than values, which holds no objects behind that.
    }
    return std::move(collector.values);
}

} // namespace

void kwWalkGraph(const KWArchiveValue& root,
                 const std::function<void(const KWArchiveValue&)>& visit) {
    // A stack of our own: what a file nests must not nest calls. Everything met stays alive, so
    // that no address comes twice.
    std::unordered_set<const void*> visited;
    std::vector<KWArchiveValue> alive;
    std::vector<KWArchiveValue> waiting{root};
    while (!waiting.empty()) {
        const KWArchiveValue value = std::move(waiting.back());
        waiting.pop_back();
        const void* const identity = value.identity();
        if (value.isNil() || (identity && !visited.insert(identity).second))
            continue;
        visit(value);
        const std::vector<KWArchiveValue> contents = contentsOf(value);
        waiting.insert(waiting.end(), contents.rbegin(), contents.rend());
        if (identity)
            alive.push_back(value);
    }
}

KWArchiveValue kwReferencesOf(const std::vector<KWArchiveField>& fields) {
    std::vector<KWArchiveValue> values;
    collectReferences(fields, values);
    return KWArchiveValue::immutableArray(std::move(values));
}
