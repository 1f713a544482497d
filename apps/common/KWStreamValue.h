#pragma once

#include <KWFoundation/KWArchiver.h>
#include <KWFoundation/KWUnknownObject.h>

class KWDocument;

/// Writes a value at the top of a sequential archive as KWUnarchiver::decodeAnything answered it.
/// False, and nothing written, for types that an archiver cannot be given so: several in one group,
/// structs, lists of numbers, selectors and classes.
bool kwEncodeStreamValue(const KWArchiveField& group, KWArchiver& archiver);

/// The value that becomes the root where an archive has one only: that of the key "root", else the
/// first; nil when there is none.
KWArchiveValue kwRootOf(const KWDocument& document);
