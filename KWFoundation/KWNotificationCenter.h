#pragma once

#include <KWFoundation/KWExport.h>

#include <functional>
#include <memory>
#include <string_view>

class KWObject;
class KWNotificationCenterState;

/// One posted notice. It is good for the time of the call that hands it over.
class KWNotification {
  public:
    KWNotification(std::string_view name, KWObject* object) : _name(name), _object(object) {}

    std::string_view name() const { return _name; }
    /// Who posted it; may be null. One in a std::shared_ptr lives at least as long as the post.
    KWObject* object() const { return _object; }

  private:
    std::string_view _name;
    KWObject* _object;
};

/// Holds one observation; destroying or disconnecting it ends the observation at once, also from
/// within a post. It may outlive the centre.
class KW_EXPORT KWNotificationToken {
  public:
    KWNotificationToken() noexcept;
    KWNotificationToken(KWNotificationToken&&) noexcept;
    KWNotificationToken& operator=(KWNotificationToken&&) noexcept;
    ~KWNotificationToken();

    void disconnect();

  private:
    friend class KWNotificationCenter;
    friend class KWNotificationCenterState;
    struct Connection;
    explicit KWNotificationToken(std::shared_ptr<Connection> connection);
    std::shared_ptr<Connection> _connection;
};

/// Delivers named notices to those who asked for them. One thread, the one that edits the model.
class KW_EXPORT KWNotificationCenter {
  public:
    using Function = std::function<void(const KWNotification&)>;

    KWNotificationCenter();
    /// Ends all observations; from within a post, those not called yet are not called any more.
    ~KWNotificationCenter();
    KWNotificationCenter(const KWNotificationCenter&) = delete;
    KWNotificationCenter& operator=(const KWNotificationCenter&) = delete;

    /// The one that the model posts to.
    static KWNotificationCenter& defaultCenter();

    /// Calls `function` for each notice named `name` that `object` posts, or that anybody posts
    /// when `object` is null. The object is not kept alive, and when it is destroyed its
    /// observations end: a later object at the same address is not mistaken for it.
    /// std::logic_error when the object does not live in a std::shared_ptr, std::invalid_argument
    /// when `function` is empty.
    [[nodiscard]] KWNotificationToken addObserver(std::string_view name, const KWObject* object,
                                                  Function function);

    /// Calls those who were connected when the post began, in order of connection. One disconnected
    /// or destroyed meanwhile is not called, one connected meanwhile not yet, and a post made by an
    /// observer runs at once. An observer that throws does not keep the others from being called;
    /// the first exception is rethrown at the end.
    ///
    /// An object in a std::shared_ptr is kept alive for the length of the post: when an observer
    /// drops the last reference to it, its observations end with the post. Any other object must
    /// outlive the post.
    void postNotificationNameObject(std::string_view name, KWObject* object);

  private:
    std::shared_ptr<KWNotificationCenterState> _state;
};
