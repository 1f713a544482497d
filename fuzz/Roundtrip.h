#pragma once

#include <KWFoundation/KWArchiveValue.h>

/// What a host does with an archive that has been read: evaluates its channels and writes it again.
/// Only the errors that an archive may raise pass; anything else is a bug.
void KWUseArchive(const KWArchiveValue& root, bool sequential);

/// Has the classes known that documents are made of. Called once.
void KWPrepareFuzzing();
