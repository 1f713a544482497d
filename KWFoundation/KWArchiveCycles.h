#pragma once

#include <KWFoundation/KWArchiveValue.h>
#include <KWFoundation/KWUnknownObject.h>

#include <memory>
#include <utility>
#include <vector>

/// Keeps objects that are read from an archive from holding each other in a circle, as nobody could
/// ever let go of them.
///
/// A field of an unknown object, or an element of a list, that refers to an object which is being
/// read just then does not hold it. Such objects alone form no circles. But registered classes hold
/// what they decode, elements of lists whatever these are: a group that is read for a field of a
/// channel of an unknown class, and lists that channel, holds it. Where a circle closes in this way
/// it is cut at fields and elements, and there so that as much as possible stays held.
class KWArchiveCycles {
  public:
    /// Without unknown objects there is nothing to do.
    explicit KWArchiveCycles(bool keepsUnknownObjects) : _isWanted(keepsUnknownObjects) {}
    /// Cuts what a reading that failed has left.
    ~KWArchiveCycles();
    KWArchiveCycles(const KWArchiveCycles&) = delete;
    KWArchiveCycles& operator=(const KWArchiveCycles&) = delete;

    /// An object whose class reads, for as long as it does.
    struct Reading {
        Reading(KWArchiveCycles& owner, std::shared_ptr<KWObject> object)
            : cycles(owner), outer(std::exchange(owner._reading, std::move(object))) {}
        ~Reading() { cycles._reading = std::move(outer); }
        Reading(const Reading&) = delete;
        Reading& operator=(const Reading&) = delete;
        KWArchiveCycles& cycles;
        std::shared_ptr<KWObject> outer;
    };

    /// An object whose fields are the contents', now or later.
    void addUnknown(const std::shared_ptr<KWObject>& object,
                    const std::shared_ptr<KWUnknownObject>& contents);

    /// A list of these elements.
    KWArchiveValue array(std::vector<KWArchiveValue> elements, bool isMutable);

    /// The object that reads gets a value, and holds it. A reference back at what is still being
    /// read is not reckoned with: classes mostly keep it as a pointer to their whole.
    void hold(const KWArchiveValue& value);

    /// Nothing is being read any more: cuts the circles among all that was added since the last
    /// time. `root` is what the caller gets.
    void cut(const KWArchiveValue& root);

  private:
    struct Hold {
        std::shared_ptr<KWObject> holder;
        KWArchiveValue value;
    };
    struct Unknown {
        std::shared_ptr<KWObject> object;
        std::shared_ptr<KWUnknownObject> contents;
    };
    class Graph;

    bool _isWanted;
    /// Whether a list has an element that is held only by those who read the list.
    bool _hasBackReferences = false;
    std::shared_ptr<KWObject> _reading;
    std::vector<Unknown> _unknowns;
    std::vector<std::shared_ptr<KWArchiveArray>> _arrays;
    std::vector<Hold> _holds;
};
