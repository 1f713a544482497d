#pragma once

#include <apps/common/KWDocument.h>

#include <string>
#include <vector>

struct SampleDocument {
    std::string fileName;
    KWData data;
};

/// The committed samples, made anew: always the same bytes.
std::vector<SampleDocument> sampleDocuments();

/// A ball that bounces for ever: Hermite curves, ping-pong, lengths and angles.
KWDocument bouncingBall();

/// The sea and a buoy on it: expressions, some of which print as others.
KWDocument waves();

/// Eight lamps of five channels each, in groups: steps and straight lines, in cycles.
KWDocument lightShow();

/// Curves that are hard to evaluate, name or draw: one of each kind that editing can make.
KWDocument hardCurvesMuseum();

/// Channels that no editing can make, in an archive written by hand: keys out of order, twice, at
/// no time, without values or without shapes.
KWData irregularMuseum();

/// As many keyframed channels with as many keys each, in one element.
KWDocument heavyDocument(int channelCount, int keyCount);
