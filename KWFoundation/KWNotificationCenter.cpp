#include <KWFoundation/KWCallList.h>
#include <KWFoundation/KWNotificationCenter.h>
#include <KWFoundation/KWObject.h>

#include <stdexcept>
#include <string>
#include <unordered_map>
#include <utility>

struct KWNotificationToken::Connection : KWCallEntry {
    bool isDead() const { return !isConnected; }
    void release() {
        // What the function holds may come back here as it is destroyed.
        const auto released = std::exchange(function, nullptr);
    }

    KWNotificationCenter::Function function;
    std::weak_ptr<KWCallList<Connection>> list; ///< gone with its centre or its object
};

class KWNotificationCenterState {
  public:
    using Connection = KWNotificationToken::Connection;
    using List = KWCallList<Connection>;
    using ListPointer = std::shared_ptr<List>;

    KWNotificationCenterState() = default;
    ~KWNotificationCenterState();
    KWNotificationCenterState(const KWNotificationCenterState&) = delete;
    KWNotificationCenterState& operator=(const KWNotificationCenterState&) = delete;

    std::shared_ptr<Connection> connect(std::string_view name, const KWObject* object,
                                        KWNotificationCenter::Function function);

    /// The lists that a post calls: of the observers of anybody, and of the object's own.
    std::pair<ListPointer, ListPointer> listsFor(std::string_view name,
                                                 const KWObject* object) const;

  private:
    struct ObjectRecord {
        /// While it has not expired, the address is this object's and nobody else's.
        std::weak_ptr<const KWObject> object;
        ListPointer list;
        bool isUseless() const { return object.expired() || list->isEmpty(); }
    };
    struct NameRecord {
        ListPointer anybody = std::make_shared<List>();
        std::unordered_map<const KWObject*, ObjectRecord> objects;
        std::size_t crowded = 16; ///< the count at which dead objects are looked for
        ListPointer listForObject(const KWObject& object);
        bool isUseless() const { return objects.empty() && anybody->isEmpty(); }
    };
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view name) const noexcept {
            return std::hash<std::string_view>()(name);
        }
    };

    NameRecord& recordForName(std::string_view name);

    std::unordered_map<std::string, NameRecord, Hash, std::equal_to<>> _names;
    std::size_t _crowded = 64; ///< the count at which names without observers are looked for
    std::uint64_t _sequence = 0;
};

KWNotificationCenterState::~KWNotificationCenterState() {
    auto names = std::move(_names);
    _names.clear();
    for (auto& [name, record] : names) {
        record.anybody->close();
        for (auto& [address, objectRecord] : record.objects)
            objectRecord.list->close();
    }
}

KWNotificationCenterState::ListPointer
KWNotificationCenterState::NameRecord::listForObject(const KWObject& object) {
    if (objects.size() >= crowded) {
        std::erase_if(objects, [](const auto& item) { return item.second.isUseless(); });
        crowded = 2 * objects.size() + 16;
    }
    ObjectRecord& record = objects[&object];
    // A record of an earlier object at this address takes its observations along.
    if (!record.list || record.object.expired())
        record = {object.weak_from_this(), std::make_shared<List>()};
    return record.list;
}

KWNotificationCenterState::NameRecord&
KWNotificationCenterState::recordForName(std::string_view name) {
    const auto found = _names.find(name);
    if (found != _names.end())
        return found->second;
    if (_names.size() >= _crowded) {
        std::erase_if(_names, [](const auto& item) { return item.second.isUseless(); });
        _crowded = 2 * _names.size() + 64;
    }
    return _names[std::string(name)];
}

std::shared_ptr<KWNotificationCenterState::Connection>
KWNotificationCenterState::connect(std::string_view name, const KWObject* object,
                                   KWNotificationCenter::Function function) {
    auto connection = std::make_shared<Connection>();
    connection->function = std::move(function);
    connection->sequence = ++_sequence;
    NameRecord& record = recordForName(name);
    const ListPointer list = object ? record.listForObject(*object) : record.anybody;
    connection->list = list;
    list->append(connection);
    return connection;
}

std::pair<KWNotificationCenterState::ListPointer, KWNotificationCenterState::ListPointer>
KWNotificationCenterState::listsFor(std::string_view name, const KWObject* object) const {
    const auto found = _names.find(name);
    if (found == _names.end())
        return {};
    const NameRecord& record = found->second;
    if (!object || record.objects.empty())
        return {record.anybody, nullptr};
    const auto own = record.objects.find(object);
    if (own == record.objects.end() || own->second.object.expired())
        return {record.anybody, nullptr};
    return {record.anybody, own->second.list};
}

KWNotificationToken::KWNotificationToken() noexcept = default;

KWNotificationToken::KWNotificationToken(std::shared_ptr<Connection> connection)
    : _connection(std::move(connection)) {}

KWNotificationToken::KWNotificationToken(KWNotificationToken&&) noexcept = default;

KWNotificationToken& KWNotificationToken::operator=(KWNotificationToken&& other) noexcept {
    KWNotificationToken old(std::move(*this));
    _connection = std::move(other._connection);
    if (&other == this)
        _connection = std::move(old._connection);
    return *this;
}

KWNotificationToken::~KWNotificationToken() {
    disconnect();
}

void KWNotificationToken::disconnect() {
    const std::shared_ptr<Connection> connection = std::move(_connection);
    _connection.reset();
    if (!connection)
        return;
    if (const auto list = connection->list.lock())
        list->remove(*connection);
}

KWNotificationCenter::KWNotificationCenter()
    : _state(std::make_shared<KWNotificationCenterState>()) {}

KWNotificationCenter::~KWNotificationCenter() = default;

KWNotificationCenter& KWNotificationCenter::defaultCenter() {
    // Never destroyed: objects that go at the program's end may still post.
    static KWNotificationCenter& center = *new KWNotificationCenter;
    return center;
}

KWNotificationToken KWNotificationCenter::addObserver(std::string_view name, const KWObject* object,
                                                      Function function) {
    if (!function)
        throw std::invalid_argument("an observer needs a function");
    if (object && object->weak_from_this().expired())
        throw std::logic_error("an observed object must live in a std::shared_ptr");
    return KWNotificationToken(_state->connect(name, object, std::move(function)));
}

void KWNotificationCenter::postNotificationNameObject(std::string_view name, KWObject* object) {
    auto [anybody, own] = _state->listsFor(name, object);
    if (!anybody || (anybody->hasNoEntries() && (!own || own->hasNoEntries())))
        return;
    // An observer may drop the last reference to what the next one is handed.
    const std::shared_ptr<KWObject> alive = object ? object->weak_from_this().lock() : nullptr;
    const KWNotification notification(name, object);
    const auto exception = KWCallEntries<KWNotificationToken::Connection>(
        std::move(anybody), std::move(own),
        [&notification](const auto& connection) { connection.function(notification); });
    if (exception)
        std::rethrow_exception(exception);
}
