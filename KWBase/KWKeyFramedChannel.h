#pragma once

#include <KWBase/KWChannel.h>
#include <KWBase/KWKeyFrameIndex.h>
#include <KWBase/KWKeyFrames.h>
#include <KWFoundation/KWTypes.h>

#include <array>
#include <memory>
#include <optional>

class KWChannelCursor;
class KWFirstException;
struct KWKeyFrameCurve;
struct KWKeyFrameStage;

/// How values run from key to key. Any other code gives 0.
enum : std::int32_t {
    KWKeyFrameModeLinear = 0,
    KWKeyFrameModeHermite = 1, ///< Kochanek-Bartels: tension, continuity and bias at each key
    KWKeyFrameModeStep = 2,
};

/// What happens outside the keyed range. Any other code leaves times as they are and does not hold
/// the ends either: outside the keys, values follow the curve that runs from the last key to the
/// first.
enum : std::int32_t {
    KWRepeatModeNone = 0,     ///< the first and the last value hold
    KWRepeatModeCycle = 1,    ///< time wraps around
    KWRepeatModePingPong = 2, ///< time runs back and forth
};

inline namespace kwbase {

/// A key's shape. 0 is neutral in each of the first three; a tension of 1 flattens the tangents.
struct HJHermiteParam {
    float tension = 0;
    float bias = 0;
    float continuity = 0;
    /// No curve reads these, and a host may keep numbers of its own in them: edits, undo, copies
    /// and sequential archives carry them. Keyed archives hold zeros in their place.
    float reserved[6] = {};
};
static_assert(sizeof(HJHermiteParam) == 36);

/// The type of an HJHermiteParam as archives and run-time type descriptions spell it.
inline constexpr const char* HJHermiteParamTypeEncoding = "{_HJHermiteParam=fff[6f]}";

/// A rectangle of time and value.
struct HJRect {
    float x = 0;      ///< time origin
    float y = 0;      ///< value origin
    float width = 0;  ///< time span
    float height = 0; ///< value span

    friend bool operator==(const HJRect&, const HJRect&) = default;
};

/// How far keys may move in time: the most negative and the largest positive offset.
struct HJKeyMoveRange {
    float minimum = 0;
    float maximum = 0;

    friend bool operator==(const HJKeyMoveRange&, const HJKeyMoveRange&) = default;
};

} // namespace kwbase

/// Answers of keyframeIndexPrecedingTime that are no index.
inline constexpr std::uint32_t KWBeforeFirstKeyframe = 0xffffffff;
inline constexpr std::uint32_t KWNoKeyframes = 0xfffffffe;

/// A channel of keys - a time, a value and a shape each - in order of time. Keys are known by their
/// time: no two share one, and 0.0 and -0.0 are one time. Nil is std::nullopt here. Times that are
/// NaN are ignored as nil is.
///
/// An edit of keys registers its inverse with the owner's undo manager, provided that the channel
/// lives in a std::shared_ptr and has an owner with an undo manager, and that no manipulation is
/// under way.
///
/// An edit is made and registered, or it is neither. What observers throw - of this channel, of its
/// notices, of its owner or of the undo manager - keeps no edit from being made, nor those that
/// follow it in the same call: the first such exception is rethrown when the whole call is done.
/// Observers may edit the channel, and the lists that a call was given.
///
/// A key's shape travels as a block of 36 bytes, an HJHermiteParam in the machine's byte order. A
/// block of another length can be stored and is answered as it was given, but an evaluation that
/// starts at its key raises KWException "KWHermiteParam size mismatch".
///
/// An archive is trusted as it is: it may bring keys that are not in order, or not equally many
/// keys and values. Such a channel is irregular. Everything works on it literally, step by step,
/// and a missing value or record raises std::out_of_range.
class KW_EXPORT KWKeyFramedChannel : public KWChannel {
  public:
    /// No keys, Hermite curves, no repeat.
    explicit KWKeyFramedChannel(std::string name = "no name");
    ~KWKeyFramedChannel() override;

    static const KWClass& classObject();
    const KWClass& isa() const override { return classObject(); }

    /// The other channel's contents: its keys, its modes, and the copy of its keys that was taken
    /// when it was last manipulated; null for another class.
    static std::shared_ptr<KWKeyFramedChannel> initWithChannel(const KWChannel& channel) {
        return KWChannel::initWithChannel<KWKeyFramedChannel>(channel);
    }
    /// A subclass copies as itself, made by its class object; null for one without a class object
    /// of its own, which has to override this.
    std::shared_ptr<KWChannel> copy() const override;
    bool takeContentsOf(const KWChannel& other) override;

    /// 36 zero bytes, the neutral shape.
    static KWData hermiteData();
    /// The record's bytes; hermiteData() for null.
    static KWData hermiteDataFrom(const HJHermiteParam* param);

    // --- Modes. Setting one neither invalidates nor notifies, and registers no undo.

    std::int32_t keyFrameChannelMode() const { return _mode; }
    void setKeyFrameChannelMode(std::int32_t mode) {
        _mode = mode;
        ++_revision;
    }
    std::int32_t repeatMode() const { return _repeat; }
    void setRepeatMode(std::int32_t mode) {
        _repeat = mode;
        ++_revision;
    }

    // --- Writing keys. Each makes a key or replaces the one at that time, and posts
    // KWChannelChangedNotification before it does. A nil time or record is ignored.

    void setValueForTime(float value, std::optional<KWTime> time) override;
    /// With the neutral shape, also at a time that has a key.
    void setValueForKeyframe(float value, std::optional<KWTime> key);
    void setValueHermiteValueForKeyframe(float value, const std::optional<KWData>& hermite,
                                         std::optional<KWTime> key);
    /// One after the other; std::out_of_range at the first key without a value or record. The
    /// channel is invalidated once more at the end.
    void setValuesHermiteValuesForKeyframes(const std::vector<float>& values,
                                            const std::vector<KWData>& hermiteValues,
                                            const std::vector<KWTime>& keys);

    // --- Replacing the shape of a key alone; nothing happens at a time without a key. The channel
    // is invalidated and KWChannelChangedNotification posted when it is done. The owner is not
    // told.

    /// KWException "KWHermiteParam size mismatch" unless the record has 36 bytes.
    void modifyHermiteValueForKeyframe(const KWData& hermite, KWTime key);
    /// Nothing happens for null.
    void modifyHermiteParamForKeyframe(const HJHermiteParam* param, KWTime key);

    // --- Removing keys. The channel is invalidated. No notification is posted, and the owner is
    // not told.

    /// Nothing happens at a time without a key.
    void removeValueForKeyframe(KWTime key);
    void removeValuesForKeyframes(const std::vector<KWTime>& keys);
    /// Does not even invalidate the channel.
    void removeAllKeyframes();

    // --- Reading keys.

    std::vector<KWTime> allKeyframes() const;
    std::uint32_t keyframeCount() const { return static_cast<std::uint32_t>(lists().keys.size()); }
    /// As many as there are keys, but in an irregular channel.
    std::uint32_t valueCount() const { return static_cast<std::uint32_t>(lists().values.size()); }
    std::uint32_t hermiteCount() const {
        return static_cast<std::uint32_t>(lists().records.size());
    }
    /// Nil when the index is not below the count.
    std::optional<KWTime> keyframeAtIndex(std::uint32_t index) const;
    std::optional<KWTime> firstKeyframe() const;
    std::optional<KWTime> lastKeyframe() const;
    bool isKeyframe(KWTime time) const;
    /// KWNotFound at a time without a key.
    std::uint32_t indexOfKeyframe(KWTime time) const;
    /// The last key at or before the time; KWBeforeFirstKeyframe or KWNoKeyframes when there is
    /// none.
    std::uint32_t keyframeIndexPrecedingTime(KWTime time) const;
    /// The last key at or before a time and the first key after it. For a time before all keys both
    /// are the first key, and from the last key on both are the last. Nil without keys.
    std::optional<std::array<KWTime, 2>> boundingKeyframesForTime(KWTime time) const;
    /// Both bounds included.
    std::vector<KWTime> keyframesBetweenAnd(KWTime first, KWTime second) const;
    /// 0 when the index is not below the count.
    float valueForKeyframeAtIndex(std::uint32_t index) const;
    /// 0 at a time without a key.
    float valueForKeyframe(KWTime time) const;
    /// Nil at a time without a key.
    std::optional<KWData> hermiteValueForKeyframe(KWTime time) const;
    /// One for each time; 0 for a time without a key.
    std::vector<float> valuesForKeyframes(const std::vector<KWTime>& keys) const;
    /// One for each time; std::invalid_argument at the first time without a key.
    std::vector<KWData> hermiteValuesForKeyframes(const std::vector<KWTime>& keys) const;

    /// Time and value ranges of the keys, 0 always among the values. Without a span of time it is
    /// 0 to 10, without a span of value -1 to 1.
    HJRect boundingRect() const;
    /// The same with the values in the user's unit.
    HJRect boundingRectInUserUnit() const;
    /// The keys inside, all bounds included; values as stored.
    std::vector<KWTime> keyframesForBoundingRect(const HJRect& rect) const;
    /// How far these keys can move together without passing one that is not among them; a side with
    /// nothing in the way has the largest float. {0, 0} without keys or times.
    HJKeyMoveRange moveRangeForSelectedKeyframes(const std::vector<KWTime>& selected) const;

    // --- Evaluation.

    float valueForTime(std::optional<KWTime> time) const override;
    void valuesForTimes(std::span<const float> times, std::span<float> values) const override;
    /// Whether there is more than one key.
    bool dependsOnTime() const override { return lists().keys.size() > 1; }

    /// Whether keys, values and shapes are equally many, the keys in order, the shapes 36 bytes.
    bool isRegular() const {
        settle();
        return _regular;
    }

    /// Grows with every key that is made, replaced or removed, by one, and with everything else
    /// that changes keys: when two counts are equal, nobody has edited keys between them.
    std::uint64_t editCount() const { return _editCount; }

    // --- Manipulation: edits between start and stop register no undo; stop registers one step from
    // the keys and values at the start to those at the stop, or none when they are equal. Changed
    // shapes alone do not count. For this the start keeps a copy of all keys, which outlives the
    // stop; starting again while manipulating takes it anew. Stopping without a start is one step
    // too: it goes back to the copy last taken, empty if none was, and again to the end.

    void startManipulation() override;
    void stopManipulation() override;

    /// KWException "Key-value mismatch" when keys, values and shapes are not equally many.
    void encodeWithCoder(KWCoder& coder) const override;
    bool initWithCoder(KWCoder& coder) override;

  private:
    friend class KWChannelCursor;
    using Record = KWKeyFrameRecords::Bytes;

    // The lists of keys. Calls that edit many keys stage their edits and put them into the lists in
    // one pass, at their end or as soon as anybody looks; only code that says so reads the lists
    // without settling them first. While there is a stage the channel counts as irregular, so that
    // reading, which looks at that first of all, need not ask.
    const KWKeyFrames& lists() const {
        settle();
        return _frames;
    }
    KWKeyFrames& lists() {
        settle();
        return _frames;
    }
    void settle() const {
        if (_stage) [[unlikely]]
            const_cast<KWKeyFramedChannel*>(this)->putStage();
    }
    void putStage();
    class Staging;
    std::optional<std::size_t> stagedIndexOf(float key) const;
    bool removeStaged(float key, KWFirstException& raised);
    bool setStaged(float value, Record record, float key, KWFirstException& raised);

    // Editing. A position is how many keys lead the list that are not after the time.
    std::size_t position(float key) const;
    std::uint32_t indexOf(float key) const;
    KWUndoManager* recordingUndoManager() const;
    // The bytes of a record, the lists of frames and the like must not be anybody's to change who
    // is told of the edit. What those throw is kept in `raised`.
    void setValueRecordForKeyframe(float value, Record record, float key);
    void setValueRecordForKeyframe(float value, Record record, float key, KWFirstException& raised);
    void setFramesForKeyframes(const KWKeyFrames& frames);
    void setFramesForKeyframes(const KWKeyFrames& frames, KWFirstException& raised);
    void replaceRecordForKeyframe(Record record, float key);
    void removeKeyframe(float key, KWFirstException& raised);
    void removeEveryKeyframe(KWFirstException& raised);
    void checkSettable(float key) const;
    void registerInverseOfSetting(float key, KWFirstException& raised);
    void registerSetting(KWUndoManager& undoManager, std::size_t index, KWFirstException& raised);
    void replay(const KWKeyFrames& start, const KWKeyFrames& end, KWFirstException& raised);
    void put(float value, Record record, float key);
    void insertKey(std::size_t index, float value, Record record, float key);
    void replaceKey(std::size_t index, std::optional<float> value, Record record);
    void removeKey(std::size_t index);
    void clearKeys();

    // Upkeep of what evaluation relies on.
    bool isOrderly() const;
    void keysChange() {
        ++_editCount;
        ++_revision;
        _place.stretch = {};
        _index.drop();
    }
    void refresh();
    void refreshTangents(std::size_t firstSegment, std::size_t lastSegment);

    // Evaluation: the curve of a regular channel, and the stated steps one by one for any other.
    KWKeyFrameCurve curve() const;
    std::uint32_t countNotAfter(const KWKeyFrameCurve& curve, float time) const;
    float valueForUpdate(KWTime time) override;
    float valueNear(KWKeyFramePlace& place, float time) const;
    bool stepOn(KWKeyFramePlace& place, float time) const;
    float valueByWalking(float time) const;
    float interpolate(std::uint32_t preceding, float time) const;
    KWKeyFrameTangents tangents(std::uint32_t preceding, std::uint32_t from,
                                std::uint32_t to) const;

    // Archiving.
    void encodeWithKeys(KWCoder& coder) const;
    void initWithKeys(KWCoder& coder);
    void encodeInOrder(KWCoder& coder) const;
    void initInOrder(KWCoder& coder);

    // What a player reads at each frame comes first, beside the base's kept value.
    std::int32_t _mode = KWKeyFrameModeHermite;
    std::int32_t _repeat = KWRepeatModeNone;
    bool _regular = true;
    KWKeyFramePlace _place; ///< of the latest update
    /// Of the stretch from each key to the next; the last entry is not used. Empty when irregular.
    std::vector<KWKeyFrameTangents> _tangents;
    KWKeyFrames _frames;
    std::unique_ptr<KWKeyFrameStage> _stage; ///< null unless a call is under way
    /// Grows with every edit of keys and every setting of a mode.
    std::uint64_t _revision = 0;
    std::uint64_t _editCount = 0;
    KWKeyFrameIndexSlot _index;
    KWKeyFrames _saved; ///< as it was when the manipulation started
};
