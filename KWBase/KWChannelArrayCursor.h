#pragma once

#include <KWBase/KWChannelArray.h>
#include <KWBase/KWChannelCursor.h>

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

/// Reads all channels of an array at one time after the other, as a player does: fastest when each
/// time lies near the one before. The channels are those that the array has when the cursor is
/// made, in the order of KWChannelArray::channelEnumerator(), which leaves out null elements; they
/// are kept alive, and may be edited meanwhile. Each thread and each reader uses a cursor of its
/// own.
class KW_EXPORT KWChannelArrayCursor {
  public:
    explicit KWChannelArrayCursor(const KWChannelArray& array);

    std::size_t channelCount() const { return _cursors.size(); }
    const std::shared_ptr<const KWChannel>& channelAtIndex(std::size_t index) const {
        return _cursors.at(index).channel();
    }

    /// values[k] is, bit for bit, what the channel of index k answers to valueForTime(time).
    /// std::invalid_argument unless there are as many values as channels; an exception that one of
    /// the evaluations raises passes through, with the values before it filled in.
    void valuesForTime(KWTime time, std::span<float> values);

  private:
    std::vector<KWChannelCursor> _cursors;
};
