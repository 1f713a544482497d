#pragma once

#include <KWBase/KWKeyFramedChannel.h>
#include <KWDesktop/KWChannelEditSource.h>
#include <KWFoundation/KWExport.h>

#include <optional>
#include <vector>

class KWFirstException;

/// A key by itself: its value as stored, its shape's bytes.
struct KWKey {
    float time = 0;
    float value = 0;
    KWData record;
};

/// Keys of a channel that go, and others that come, as one edit.
struct KWKeyChange {
    std::vector<KWTime> removed;
    /// Set one after the other, when those have gone: of keys at one time the last one stays.
    std::vector<KWKey> set;
};

/// Whether a channel's keys can be edited as a list: each has a value and a shape, and their times
/// rise. Only an archive brings other ones.
KW_EXPORT bool KWHasOrderlyKeys(const KWKeyFramedChannel& channel);

/// The key at a time, with the channel's own bits of it.
KW_EXPORT std::optional<KWKey> KWKeyAt(const KWKeyFramedChannel& channel, KWTime time);

/// Leaves out what is no key, and what is set after all; sorts the keys to be set and leaves one
/// for each time.
KW_EXPORT KWKeyChange KWNormalKeyChange(const KWKeyFramedChannel& channel, KWKeyChange change);

/// What kind of edit a normal change is to a channel, for whoever records it; nothing where it
/// changes not a bit. Manipulation, which `keys` stands for, notices other times and values only,
/// and takes 0 and -0 for the same; a shape is noticed as `shape`, and everything as `value`.
KW_EXPORT std::optional<KWChannelEdit> KWKindOfKeyChange(const KWKeyFramedChannel& channel,
                                                         const KWKeyChange& change);

/// Makes a normal change in a time that grows little more than with the number of keys. What
/// others throw when they are told is kept in `raised`.
KW_EXPORT void KWApplyKeyChange(KWKeyFramedChannel& channel, const KWKeyChange& change,
                                KWFirstException& raised);
