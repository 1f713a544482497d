#pragma once

#include <apps/common/Bake.h>
#include <apps/common/KWDocument.h>

// What the subcommands that evaluate have in common.

/// Opens a document; "-" is standard input.
KWDocument openDocument(const std::string& path);

/// The name that KWFileContents reads a document argument under.
std::string inputPath(const std::string& argument);

/// "binary", "xml" or "sequential", as options and JSON spell it; binary for any other name.
std::string formName(KWDocument::Form form);
KWDocument::Form formNamed(std::string_view name);

/// The channels that the addresses name, in that order; all of the document's for no addresses,
/// less those of unknown kinds. Warns of those, and of channels without an expression.
/// KWAddressError for an address, DataError when one of the channels cannot be evaluated.
std::vector<Place> channelsToEvaluate(const KWDocument& document,
                                      const std::vector<std::string>& addresses);

/// Makes values come out in these units: names, short or long, of at most one unit of length and
/// one of angle. Meter and radian for a kind without one. UseError.
void setUnits(const std::vector<std::string>& names);

/// The short name of the unit that the channel's values come out in; "" for none.
std::string unitName(const KWChannel& channel);
