#include <KWDesktop/KWChannelMetaTypes.h>
#include <KWDesktop/KWPropertyObserving.h>
#include <KWFoundation/KWLog.h>

#include <QByteArray>
#include <QDynamicPropertyChangeEvent>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QObject>
#include <QPointer>
#include <algorithm>
#include <exception>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

QObject* objectIn(const QVariant& value) {
    return value.value<QObject*>();
}

/// What is listened to: a signal, or without one the setting of a dynamic property.
struct Source {
    QPointer<QObject> object;
    QMetaMethod signal;
    QByteArray dynamicName;

    bool operator==(const Source&) const = default;
    bool isDynamic() const { return !signal.isValid(); }
};

QMetaMethod destroyedSignal() {
    return QMetaMethod::fromSignal(&QObject::destroyed);
}

/// One registration of an observer, at a path that starts at one object. It owns itself.
class Observation final : public QObject {
    Q_OBJECT

  public:
    Observation(QObject& root, KWKeyObserver& observer, std::string_view keyPath,
                std::uint32_t options, const void* context);
    void start();

    static Observation* latest(const QObject& root, const KWKeyObserver& observer,
                               std::string_view keyPath);
    static void endThoseWithoutObserver(const QObject& root);

    /// Tells no more, and goes as soon as no notice of it is under way.
    Q_SLOT void end();
    Q_SLOT void notice();
    /// Stops listening to what stood behind an object that is gone; its holder need not tell.
    Q_SLOT void forgetBehindTheGone();

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    ~Observation() override = default;

    using Registry = std::unordered_map<const QObject*, std::vector<Observation*>>;
    /// Never destroyed: objects that go at the program's end may still be observed.
    static Registry& registry() {
        static Registry& all = *new Registry;
        return all;
    }

    /// Brackets what may run code of others, which may end this: the second one destroys it then.
    void enter() { ++_underWay; }
    void leave();

    void link();
    std::vector<Source> sources();
    void listen(std::vector<Source> sources);
    bool filters(const QObject* object) const;
    void logOnce(std::size_t place, const QObject& object);
    void tell(const KWKeyValueChange& change);

    QObject* const _root; ///< this goes before it does
    KWKeyObserver* const _observer;
    const std::weak_ptr<const void> _lifetime;
    const std::string _keyPath;
    const std::uint32_t _options;
    const void* const _context;
    const QList<QByteArray> _names;
    std::vector<bool> _logged; ///< for each name
    std::vector<Source> _sources;
    QVariant _before; ///< kept only for those who ask for the old value
    int _underWay = 0;
    bool _ended = false;
};

QList<QByteArray> namesIn(std::string_view keyPath) {
    return QByteArray(keyPath.data(), static_cast<qsizetype>(keyPath.size())).split('.');
}

QVariant valueAtPath(const QObject* object, const QList<QByteArray>& names) {
    for (qsizetype i = 0; object && i < names.size(); ++i) {
        const QVariant value = object->property(names[i].constData());
        if (i + 1 == names.size())
            return value;
        object = objectIn(value);
    }
    return {};
}

Observation::Observation(QObject& root, KWKeyObserver& observer, std::string_view keyPath,
                         std::uint32_t options, const void* context)
    : _root(&root), _observer(&observer), _lifetime(observer.lifetime()), _keyPath(keyPath),
      _options(options), _context(context), _names(namesIn(keyPath)),
      _logged(static_cast<std::size_t>(_names.size())) {}

void Observation::start() {
    registry()[_root].push_back(this);
    connect(_root, &QObject::destroyed, this, &Observation::end);
    enter();
    link();
    if (!_ended && (_options & KWKeyValueObservingOptionOld))
        _before = valueAtPath(_root, _names);
    leave();
}

void Observation::leave() {
    if (--_underWay == 0 && _ended)
        delete this;
}

Observation* Observation::latest(const QObject& root, const KWKeyObserver& observer,
                                 std::string_view keyPath) {
    const auto found = registry().find(&root);
    if (found == registry().end())
        return nullptr;
    const auto& those = found->second;
    const auto last = std::find_if(those.rbegin(), those.rend(), [&](const Observation* one) {
        return one->_observer == &observer && one->_keyPath == keyPath;
    });
    return last == those.rend() ? nullptr : *last;
}

void Observation::endThoseWithoutObserver(const QObject& root) {
    const auto found = registry().find(&root);
    if (found == registry().end())
        return;
    const std::vector<Observation*> those = found->second;
    for (Observation* one : those)
        if (one->_lifetime.expired())
            one->end();
}

void Observation::end() {
    if (_ended)
        return;
    _ended = true;
    const auto found = registry().find(_root);
    std::erase(found->second, this);
    if (found->second.empty())
        registry().erase(found);
    if (_underWay == 0)
        delete this;
    else
        listen({});
}

void Observation::notice() {
    if (_ended)
        return;
    if (_lifetime.expired())
        return end();
    enter();
    link();
    KWKeyValueChange change;
    if (!_ended && _options != 0) {
        const QVariant now = valueAtPath(_root, _names);
        if (_options & KWKeyValueObservingOptionNew)
            change.newValue = now;
        if (_options & KWKeyValueObservingOptionOld) {
            change.oldValue = _before;
            _before = now;
        }
    }
    if (!_ended)
        tell(change);
    leave();
}

void Observation::forgetBehindTheGone() {
    const auto gone = std::find_if(_sources.begin(), _sources.end(),
                                   [](const Source& source) { return !source.object; });
    listen({_sources.begin(), gone});
}

void Observation::tell(const KWKeyValueChange& change) {
    std::string what = "no standard exception";
    try {
        return _observer->observeValueForKeyPathOfObjectChangeContext(_keyPath, nullptr, change,
                                                                      _context);
    } catch (const std::exception& exception) {
        what = exception.what();
    } catch (...) {
    }
    KWLog("An observer of the property \"" + _keyPath + "\" has thrown: " + what);
}

bool Observation::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::DynamicPropertyChange) {
        const QByteArray name = static_cast<QDynamicPropertyChangeEvent*>(event)->propertyName();
        if (std::any_of(_sources.begin(), _sources.end(), [&](const Source& source) {
                return source.object == watched && source.isDynamic() && source.dynamicName == name;
            }))
            notice();
    }
    return false;
}

void Observation::link() {
    std::vector<Source> found = sources();
    if (!_ended)
        listen(std::move(found));
}

std::vector<Source> Observation::sources() {
    std::vector<Source> found;
    const auto add = [&found](Source source) {
        // The same signal may serve several properties on the path: one notice is enough.
        if (std::find(found.begin(), found.end(), source) == found.end())
            found.push_back(std::move(source));
    };
    QPointer<QObject> object = _root;
    for (std::size_t place = 0; object && place < _logged.size(); ++place) {
        const QByteArray& name = _names[static_cast<qsizetype>(place)];
        const QMetaObject& meta = *object->metaObject();
        const QMetaProperty property = meta.property(meta.indexOfProperty(name.constData()));
        add({object, destroyedSignal(), {}});
        if (!property.isValid())
            add({object, {}, name});
        else if (property.hasNotifySignal())
            add({object, property.notifySignal(), {}});
        else if (!property.isConstant())
            logOnce(place, *object);
        if (place + 1 < _logged.size())
            object = objectIn(object->property(name.constData()));
    }
    return found;
}

void Observation::logOnce(std::size_t place, const QObject& object) {
    if (_logged[place])
        return;
    _logged[place] = true;
    KWLog("The property \"" + _names[static_cast<qsizetype>(place)].toStdString() + "\" of " +
          object.metaObject()->className() +
          " has no NOTIFY signal: changes of it are not observed");
}

bool Observation::filters(const QObject* object) const {
    return std::any_of(_sources.begin(), _sources.end(), [object](const Source& source) {
        return source.object == object && source.isDynamic();
    });
}

void Observation::listen(std::vector<Source> sources) {
    const auto isIn = [](const std::vector<Source>& list, const Source& source) {
        return std::find(list.begin(), list.end(), source) != list.end();
    };
    const auto slotFor = [](const Source& source) {
        const bool isEnd = source.signal == destroyedSignal();
        return staticMetaObject.method(
            staticMetaObject.indexOfSlot(isEnd ? "forgetBehindTheGone()" : "notice()"));
    };
    const std::vector<Source> before = std::exchange(_sources, std::move(sources));
    for (const Source& source : before) {
        if (!source.object || isIn(_sources, source))
            continue;
        if (!source.isDynamic())
            disconnect(source.object, source.signal, this, slotFor(source));
        else if (!filters(source.object))
            source.object->removeEventFilter(this);
    }
    for (const Source& source : _sources) {
        if (isIn(before, source))
            continue;
        if (source.isDynamic())
            source.object->installEventFilter(this);
        else
            connect(source.object, source.signal, this, slotFor(source));
    }
}

} // namespace

QVariant KWValueForKeyPath(const QObject* object, std::string_view keyPath) {
    return valueAtPath(object, namesIn(keyPath));
}

void KWAddObserverForKeyPathOptionsContext(QObject& object, KWKeyObserver& observer,
                                           std::string_view keyPath, std::uint32_t options,
                                           const void* context) {
    KWRegisterChannelMetaTypes();
    Observation::endThoseWithoutObserver(object);
    (new Observation(object, observer, keyPath, options, context))->start();
}

void KWRemoveObserverForKeyPath(QObject& object, KWKeyObserver& observer,
                                std::string_view keyPath) {
    if (Observation* const observation = Observation::latest(object, observer, keyPath))
        observation->end();
}

#include "KWPropertyObserving.moc"
