#pragma once

#include <apps/common/KWDocument.h>

/// What a document would not bring into another form. Each is a line that names the channel, class
/// or value it is about.
struct KWConversionLosses {
    /// What the form cannot carry: without it the document can be written.
    std::vector<std::string> losses;
    /// What keeps the document from being written at all.
    std::vector<std::string> refusals;
};

/// Looks through the whole document, as data(form, versions) would write it.
///
/// The expression of an algebraic channel comes back as it was typed through the KWElement that has
/// the channel, if that is written in a version of 1 or later. Else a keyed archive does not bring
/// it back at all, and a sequential one brings what its printed text is read as, which is a loss
/// where that is another expression or none.
///
/// Into a sequential archive go no owners of channels, but a KWElement makes itself the owner of
/// its channels again when it is read; no sign of -0.0; no names of values at the top. Into a keyed
/// archive go no reserved floats of shapes, and no values behind the root. Objects of unknown
/// classes go only into an archive of the kind they came from. What a class did not have in an
/// older version is lost with that version.
KWConversionLosses kwConversionLosses(const KWDocument& document, KWDocument::Form form,
                                      const KWClassVersions& versions = {});
