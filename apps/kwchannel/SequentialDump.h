#pragma once

#include <KWFoundation/KWUnknownObject.h>

#include <apps/common/Output.h>

#include <span>
#include <string>
#include <unordered_map>
#include <vector>

/// Shows what stands in a sequential archive, whatever its classes: what each call wrote, with its
/// types, and objects with the versions of their classes. Objects have numbers in the order of the
/// archive; each is shown once, and where it is met again only its number is. What is nested deeper
/// than `maximumDepth` is shown at the end.
class SequentialDump {
  public:
    /// Reads the archive; raises KWArchiveError.
    SequentialDump(std::span<const std::byte> bytes, const std::string& file, Output& output,
                   std::size_t maximumDepth);

    void writeTree();
    /// The objects by number, each alone.
    void writeObjects();

  private:
    /// A line still to be written, and what hangs below it: a value of a type, or what a call wrote
    /// as a whole, which has no value.
    struct Entry {
        std::size_t depth;
        std::string label;
        std::string_view type;
        const KWArchiveField* field;
    };

    void numberObjects();
    void writeHeading();
    void writeGroups(const std::vector<KWArchiveField>& groups, bool followsReferences);
    void writeEntry(const Entry& entry, bool followsReferences);
    void writeObject(const Entry& entry, bool followsReferences);
    void pushGroups(const std::vector<KWArchiveField>& groups, std::size_t depth);
    void pushValues(std::string_view types, const KWArchiveField& group, std::size_t depth);
    void writeLine(const Entry& entry, const std::string& text);

    std::string reference(const KWUnknownObject& object) const;

    Output& _output;
    std::size_t _maximumDepth;
    bool _isBigEndian;
    std::vector<KWArchiveField> _tops;
    std::unordered_map<const KWUnknownObject*, std::size_t> _numbers;
    std::vector<const KWUnknownObject*> _objects;
    std::vector<bool> _isShown;
    std::vector<Entry> _waiting;
    std::vector<Entry> _deeper;
};
