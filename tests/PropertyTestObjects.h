#pragma once

#include <KWBase/KWChannel.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWDesktop/KWChannelMetaTypes.h>
#include <KWFoundation/KWKeyObserving.h>

#include <QObject>
#include <QPointer>
#include <QVariant>
#include <any>
#include <functional>
#include <string>
#include <vector>

/// A host's object. It signals each setting, also of the same value.
class Player : public QObject {
    Q_OBJECT
    Q_PROPERTY(QObject* next READ next WRITE setNext NOTIFY nextChanged)
    Q_PROPERTY(double time READ time WRITE setTime NOTIFY timeChanged)
    Q_PROPERTY(QVariant selection READ selection WRITE setSelection NOTIFY selectionChanged)
    Q_PROPERTY(
        std::shared_ptr<KWChannel> channel READ channel WRITE setChannel NOTIFY channelChanged)
    Q_PROPERTY(
        std::shared_ptr<KWKeyFramedChannel> curve READ curve WRITE setCurve NOTIFY curveChanged)
    Q_PROPERTY(int silent MEMBER silent)
    Q_PROPERTY(QObject* silentNext MEMBER silentNext)
    Q_PROPERTY(int fixed READ fixed CONSTANT)
    Q_PROPERTY(int first MEMBER first NOTIFY bothChanged)
    Q_PROPERTY(QObject* self READ self NOTIFY bothChanged)

  public:
    using QObject::QObject;

    QObject* next() const { return _next; }
    void setNext(QObject* next) {
        _next = next;
        Q_EMIT nextChanged();
    }
    double time() const { return _time; }
    void setTime(double time) {
        _time = time;
        Q_EMIT timeChanged(time);
    }
    QVariant selection() const { return _selection; }
    void setSelection(const QVariant& selection) {
        _selection = selection;
        Q_EMIT selectionChanged();
    }
    std::shared_ptr<KWChannel> channel() const { return _channel; }
    void setChannel(std::shared_ptr<KWChannel> channel) {
        _channel = std::move(channel);
        Q_EMIT channelChanged();
    }
    std::shared_ptr<KWKeyFramedChannel> curve() const { return _curve; }
    void setCurve(std::shared_ptr<KWKeyFramedChannel> curve) {
        _curve = std::move(curve);
        Q_EMIT curveChanged();
    }
    int fixed() const { return 5; }
    QObject* self() { return this; }

    int silent = 3;
    QObject* silentNext = nullptr;
    int first = 0;

  Q_SIGNALS:
    void nextChanged();
    void timeChanged(double time);
    void selectionChanged();
    void channelChanged();
    void curveChanged();
    void bothChanged();

  private:
    QPointer<QObject> _next;
    double _time = 0;
    QVariant _selection;
    std::shared_ptr<KWChannel> _channel;
    std::shared_ptr<KWKeyFramedChannel> _curve;
};

/// Notes each notice as "path old>new", with "-" for what was not asked for and "?" for invalid.
class PropertyNotes final : public KWKeyObserver {
  public:
    explicit PropertyNotes(std::function<void()> also = {}) : _also(std::move(also)) {}
    ~PropertyNotes() { resign(); }

    void observeValueForKeyPathOfObjectChangeContext(std::string_view keyPath, KWObject* object,
                                                     const KWKeyValueChange& change,
                                                     const void* context) override {
        notes.push_back(std::string(keyPath) + ' ' + text(change.oldValue) + '>' +
                        text(change.newValue));
        lastObject = object;
        lastContext = context;
        if (_also)
            _also();
    }

    std::vector<std::string> notes;
    KWObject* lastObject = nullptr;
    const void* lastContext = nullptr;

  private:
    static std::string text(const std::any& value) {
        if (!value.has_value())
            return "-";
        const auto variant = std::any_cast<QVariant>(value);
        return variant.isValid() ? variant.toString().toStdString() : "?";
    }

    std::function<void()> _also;
};
