#pragma once

#include <KWBase/KWChannel.h>
#include <KWFoundation/KWCoder.h>
#include <KWFoundation/KWKeyObserving.h>
#include <KWFoundation/KWKeyedArchiver.h>
#include <KWFoundation/KWKeyedUnarchiver.h>
#include <KWFoundation/KWNotificationCenter.h>
#include <KWFoundation/KWPropertyList.h>

#include <any>
#include <bit>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

inline std::uint32_t bitsOf(float value) {
    return std::bit_cast<std::uint32_t>(value);
}

/// Counts the change notices of one channel.
class NoticeCounter {
  public:
    explicit NoticeCounter(const KWChannel* channel, std::function<void()> also = {})
        : _token(KWNotificationCenter::defaultCenter().addObserver(
              KWChannelChangedNotification, channel,
              [this, also = std::move(also)](const KWNotification& notice) {
                  ++count;
                  object = notice.object();
                  if (also)
                      also();
              })) {}

    int count = 0;
    const KWObject* object = nullptr;

  private:
    KWNotificationToken _token;
};

/// Notes each setting of "valid" as two letters, before and after.
class ValidObserver final : public KWKeyObserver {
  public:
    explicit ValidObserver(std::function<void()> also = {}) : _also(std::move(also)) {}
    virtual ~ValidObserver() = default;

    void observe(KWChannel& channel) {
        channel.addObserverForKeyPathOptionsContext(
            *this, "valid", KWKeyValueObservingOptionOld | KWKeyValueObservingOptionNew, this);
    }
    void observeValueForKeyPathOfObjectChangeContext(std::string_view, KWObject*,
                                                     const KWKeyValueChange& change,
                                                     const void*) override {
        seen.push_back(std::any_cast<bool>(change.oldValue) ? 'Y' : 'N');
        seen.push_back(std::any_cast<bool>(change.newValue) ? 'Y' : 'N');
        seen.push_back(' ');
        if (_also)
            _also();
    }

    std::string seen;

  private:
    std::function<void()> _also;
};

/// An owner that counts, wherever it lives.
class CountingOwner : public KWChannelOwner {
  public:
    explicit CountingOwner(std::function<void()> also = {}) : _also(std::move(also)) {}
    ~CountingOwner() override { resign(); }

    KWUndoManager* undoManager() override { return manager; }
    void invalidate() override {
        ++invalidations;
        if (_also)
            _also();
    }

    int invalidations = 0;
    KWUndoManager* manager = nullptr;

  private:
    std::function<void()> _also;
};

/// An owner that answers nothing.
class SilentOwner final : public KWChannelOwner {
  public:
    ~SilentOwner() override = default;
};

/// Keeps what an object encodes, call by call, and gives it back.
class MemoryCoder final : public KWCoder {
  public:
    struct Field {
        std::string call;
        std::string key;
        KWArchiveValue value;
    };

    ~MemoryCoder() override = default;

    bool allowsKeyedCoding() const override { return true; }

    void encodeObjectForKey(const KWArchiveValue& value, std::string_view key) override {
        put("object", key, value);
    }
    void encodeConditionalObjectForKey(const std::shared_ptr<KWObject>& object,
                                       std::string_view key) override {
        put("conditional", key, object);
    }
    void encodeInt32ForKey(std::int32_t value, std::string_view key) override {
        put("int32", key, KWNumber(value));
    }
    void encodeDoubleForKey(double value, std::string_view key) override {
        put("double", key, KWNumber(value));
    }

    bool containsValueForKey(std::string_view key) const override { return find(key) != nullptr; }
    KWArchiveValue decodeObjectForKey(std::string_view key) override {
        const Field* const field = find(key);
        return field ? field->value : KWArchiveValue();
    }
    std::int32_t decodeInt32ForKey(std::string_view key) override {
        const KWNumber* const number = numberForKey(key);
        return number ? static_cast<std::int32_t>(number->int64Value()) : 0;
    }
    double decodeDoubleForKey(std::string_view key) override {
        const KWNumber* const number = numberForKey(key);
        return number ? number->doubleValue() : 0;
    }

    void put(std::string call, std::string_view key, KWArchiveValue value) {
        fields.push_back({std::move(call), std::string(key), std::move(value)});
    }
    void remove(std::string_view key) {
        std::erase_if(fields, [key](const Field& field) { return field.key == key; });
    }
    void replace(std::string_view key, KWArchiveValue value) {
        remove(key);
        put("test", key, std::move(value));
    }
    const Field* find(std::string_view key) const {
        for (const Field& field : fields)
            if (field.key == key)
                return &field;
        return nullptr;
    }
    const KWArchiveValue& valueForKey(std::string_view key) const {
        const Field* const field = find(key);
        if (!field)
            throw std::out_of_range("nothing under " + std::string(key));
        return field->value;
    }

    /// "name:object colorIndex:int32 ..."
    std::string calls() const {
        std::string text;
        for (const Field& field : fields)
            text += (text.empty() ? "" : " ") + field.key + ":" + field.call;
        return text;
    }

    std::vector<Field> fields;

  private:
    const KWNumber* numberForKey(std::string_view key) const {
        const Field* const field = find(key);
        return field ? field->value.number() : nullptr;
    }
};

/// The fields that an object encodes.
inline std::unique_ptr<MemoryCoder> fieldsOf(const KWObject& object) {
    auto coder = std::make_unique<MemoryCoder>();
    object.encodeWithCoder(*coder);
    return coder;
}

template <class T>
std::shared_ptr<T> unarchived(const KWData& bytes, KWKeyedUnarchiver::Options options = {}) {
    return std::dynamic_pointer_cast<T>(KWKeyedUnarchiver::unarchiveObjectWithData(bytes, options));
}

/// What becomes of an object that is written to a keyed archive and read.
template <class T>
std::shared_ptr<T> archivedAndRead(const std::shared_ptr<T>& object,
                                   KWPropertyList::Format format = KWPropertyList::Format::binary) {
    return unarchived<T>(KWKeyedArchiver::archivedDataWithRootObject(object, format));
}

/// A registration for as long as a test needs it.
class RegisteredClass {
  public:
    explicit RegisteredClass(const KWClass& aClass) : _class(aClass) { KWRegisterClass(_class); }
    ~RegisteredClass() { KWUnregisterClass(_class); }
    RegisteredClass(const RegisteredClass&) = delete;
    RegisteredClass& operator=(const RegisteredClass&) = delete;

  private:
    const KWClass& _class;
};

/// The archive's element behind a reference, and back to the root object's own.
class ArchiveReader {
  public:
    explicit ArchiveReader(KWData bytes)
        : _bytes(std::move(bytes)), _list(KWPropertyList::parse(_bytes)) {}

    const KWPropertyList& list() const { return _list; }
    KWPropertyList::Index rootObject() const {
        return behind(_list.valueForKey(_list.valueForKey(_list.root(), "$top"), "root"));
    }
    /// The element that a UID names.
    KWPropertyList::Index behind(KWPropertyList::Index uid) const {
        const auto objects = _list.children(_list.valueForKey(_list.root(), "$objects"));
        return objects[static_cast<std::size_t>(_list.uidValue(uid))];
    }
    KWPropertyList::Index field(KWPropertyList::Index object, std::string_view key) const {
        return _list.valueForKey(object, key);
    }
    KWPropertyList::Index objectField(KWPropertyList::Index object, std::string_view key) const {
        return behind(field(object, key));
    }
    /// The keys of an instance in their order, its class's left out.
    std::string keysOf(KWPropertyList::Index object) const {
        std::string keys;
        const auto all = _list.children(object);
        for (std::uint32_t k = 0; k < _list.count(object); ++k)
            if (const auto key = _list.stringValue(all[k]); key != "$class")
                keys += (keys.empty() ? "" : " ") + std::string(key);
        return keys;
    }
    /// The class's name and its superclasses'.
    std::string classesOf(KWPropertyList::Index object) const {
        std::string names;
        const auto record = objectField(object, "$class");
        for (const auto name : _list.children(_list.valueForKey(record, "$classes")))
            names += (names.empty() ? "" : " ") + std::string(_list.stringValue(name));
        return names;
    }

  private:
    KWData _bytes;
    KWPropertyList _list;
};
