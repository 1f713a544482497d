#pragma once

#include <KWFoundation/KWPropertyList.h>

/// Adds a node of one property list, with all below it, to another and answers its index there. A
/// node that stands at several places is copied once. Raises KWArchiveError (damaged) for a
/// container that holds itself, and (unsupported) for nesting beyond KWArchiveMaximumDepth.
KWPropertyList::Index kwCopyPropertyListNode(const KWPropertyList& from, KWPropertyList::Index node,
                                             KWPropertyList& to);

/// All of a property list below its root. Equal values that stand apart, as they do in what was
/// read from XML, become one where KWPropertyList makes them so; containers stay apart. Raises what
/// the above does.
KWPropertyList kwCopyPropertyList(const KWPropertyList& from);
