#pragma once

#include <apps/common/KWDocument.h>

#include <optional>
#include <span>

/// Something that is wrong in a document, or may be.
struct KWDocumentFault {
    enum class Severity : std::uint8_t {
        fault,  ///< a program may show or evaluate this wrongly, or refuse to
        warning ///< nothing goes wrong, but people may
    };

    Severity severity = Severity::fault;
    /// The path of a channel, the name of an element or "Element/Group"; "" for the document.
    std::string place;
    /// Which key, counted from 1.
    std::optional<std::size_t> key;
    /// In a few words, without an end mark, such as "its time 1 is that of key 2 too".
    std::string text;

    /// "Ball/Position/x: key 3: its time 1 is that of key 2 too".
    std::string line() const;
};

/// Everything that is wrong, in the order of the document; empty for one in order.
///
/// Of each channel: that it has equally many keys, values and shapes; that the times rise; that
/// times, values and shapes are finite; that mode, repeat mode and unit type are known; that an
/// algebraic one has an interpreter with a mode that is known; that its group is the one that holds
/// it, its owner the one of its element, and it stands at one place only. Of lists: that nothing in
/// them is nil, and that no two elements share one. Warnings tell of equal paths, empty names,
/// lists that are not there, algebraic channels without an expression, and of channels of unknown
/// classes, which are not looked into.
std::vector<KWDocumentFault> kwCheckDocument(const KWDocument& document);

/// Those of a keyed archive that reading mends, so that the document does not show them: shapes
/// that have not 36 bytes each. Empty for an archive of another kind, or that does not open.
std::vector<KWDocumentFault> kwCheckStoredShapes(std::span<const std::byte> bytes,
                                                 const KWDocument& document);
