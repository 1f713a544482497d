#pragma once

#include <KWBase/KWChannel.h>
#include <KWBase/KWKeyFrames.h>

#include <cstdint>

/// Reads a channel at one time after the other, fastest when each lies near the one before. The
/// answers are those of valueForTime, bit for bit, also when the channel is edited in between. Each
/// thread and each reader uses a cursor of its own.
class KW_EXPORT KWChannelCursor {
  public:
    /// Keeps the channel alive. std::invalid_argument for null.
    explicit KWChannelCursor(std::shared_ptr<const KWChannel> channel);

    float valueForTime(KWTime time) { return valueAt(time.time()); }

    const std::shared_ptr<const KWChannel>& channel() const { return _channel; }

  private:
    // Plain floats travel in registers of their own kind.
    float valueAt(float t);
    float valueElsewhere(float t);

    std::shared_ptr<const KWChannel> _channel;
    // What the channel counts its changes by, and how far it was when the place was found; at
    // first, and for channels of other kinds, these are never equal.
    const std::uint64_t* _revision;
    std::uint64_t _knownRevision = UINT64_MAX;
    KWKeyFramePlace _place;
    bool _isKeyFramed = false;
    bool _isPlain = false; ///< a Hermite curve that maps no times
};
