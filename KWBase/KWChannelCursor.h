#pragma once

#include <KWBase/KWChannel.h>
#include <KWBase/KWKeyFrames.h>

#include <cstdint>

class KWKeyFramedChannel;

/// Reads a channel at one time after the other, fastest when each lies near the one before. The
/// answers are those of valueForTime, bit for bit, also when the channel is edited in between. Each
/// thread and each reader uses a cursor of its own.
class KW_EXPORT KWChannelCursor {
  public:
    /// Keeps the channel alive. std::invalid_argument for null.
    explicit KWChannelCursor(std::shared_ptr<const KWChannel> channel);

    float valueForTime(KWTime time);

    const std::shared_ptr<const KWChannel>& channel() const { return _channel; }

  private:
    float valueElsewhere(KWTime time);

    std::shared_ptr<const KWChannel> _channel;
    const KWKeyFramedChannel* _keyFramed; ///< null for channels of other kinds
    std::uint32_t _segment = 0;           ///< the key that preceded the last time
    // The stretch from that key to the next one, provided that the channel's count of edits is
    // still the same; at first it is not.
    std::uint64_t _editCount = UINT64_MAX;
    KWKeyFrameStretch _stretch;
};
