#pragma once

#include <KWFoundation/KWArchiveValue.h>
#include <KWFoundation/KWUnknownObject.h>

#include <functional>

/// Calls `visit` for everything that an archive of these values would hold: each string, list and
/// object once, however many refer to it, numbers at each place. What an object holds is learned
/// from what it encodes, so that classes of any kind take part; an object that cannot be encoded
/// ends where it refuses. Depth-first, in the order of the archive.
///
/// What an object holds in lists of floats, times and records is not visited.
void kwWalkGraph(const KWArchiveValue& root,
                 const std::function<void(const KWArchiveValue&)>& visit);

/// What a value at the top of a sequential archive refers to, as a list to walk over.
KWArchiveValue kwReferencesOf(const std::vector<KWArchiveField>& fields);
