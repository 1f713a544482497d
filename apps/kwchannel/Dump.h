#pragma once

#include <KWFoundation/KWPropertyList.h>

#include <apps/common/Output.h>

#include <string>
#include <unordered_set>
#include <vector>

/// Shows what stands in a keyed archive, object by object, whatever its classes. Each object is
/// shown once; where it is met again only its number is. What is nested deeper than `maximumDepth`
/// is shown at the end, so that lines stay short and nothing is left out.
class Dump {
  public:
    /// Raises KWArchiveError for a property list that is no keyed archive.
    Dump(const KWPropertyList& list, Output& output, std::size_t maximumDepth);

    void writeTree();
    /// The objects by number, each alone.
    void writeObjects();

  private:
    using Index = KWPropertyList::Index;

    /// A line still to be written, and what hangs below it.
    struct Entry {
        std::size_t depth;
        std::string label;
        Index node;
    };

    void writeHeading();
    void writeBelow(Entry first, bool followsReferences);
    void writeEntry(const Entry& entry, bool followsReferences);
    void writeReference(const Entry& entry);
    void writeContainer(const Entry& entry, const std::string& number);
    void pushChildren(const Entry& entry);
    void writeLine(const Entry& entry, const std::string& text);

    Index object(std::uint64_t number) const;
    bool isNull(Index node) const;
    bool isContainer(Index node) const;
    std::string scalarText(Index node) const;
    std::string classText(Index dictionary) const;
    std::string className(Index record) const;
    [[noreturn]] void fail(const std::string& reason, Index node) const;

    const KWPropertyList& _list;
    Output& _output;
    std::size_t _maximumDepth;
    Index _top;
    Index _objects;
    std::vector<Entry> _waiting;
    std::vector<Entry> _deeper;
    std::unordered_set<Index> _shown;
};
