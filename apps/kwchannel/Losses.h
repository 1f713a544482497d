#pragma once

#include <apps/common/KWConversionLosses.h>

#include <string>

/// Tells on standard error what the form cannot carry of the document. DataError, that it is "not
/// converted" or as `outcome` has it, when that keeps the document from being written, and without
/// `isLossy` also when something would be lost. `advice` ends that message.
void tellLosses(const KWDocument& document, KWDocument::Form form, const KWClassVersions& versions,
                bool isLossy, const std::string& outcome, const std::string& advice);
