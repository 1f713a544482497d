#pragma once

#include <KWBase/KWKeyFramedChannel.h>

#include <cstddef>
#include <vector>

/// What a call that edits many keys of a regular channel has done, and not yet put into its lists.
/// Records of other lengths than theirs are never staged.
struct KWKeyFrameStage {
    std::vector<bool> isRemoved; ///< for each key in the lists
    KWKeyFrames added;           ///< ascending, and none has the time of a key that stays
};

/// Stages the edits of one call for as long as that pays: few edits, and those that others look
/// at one by one, go into the lists directly. Puts what has been staged into the lists at its end.
class KWKeyFramedChannel::Staging {
  public:
    Staging(KWKeyFramedChannel& channel, std::size_t editCount);
    ~Staging() { _channel.settle(); }
    Staging(const Staging&) = delete;
    Staging& operator=(const Staging&) = delete;

    /// To be asked before each edit, which may then be staged.
    bool isPossible();

  private:
    KWKeyFramedChannel& _channel;
    bool _isOn;
    bool _hasBegun = false;
};
