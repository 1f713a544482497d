#include <KWFoundation/KWCoder.h>

#include <apps/common/KWPropertyListCopy.h>

#include <stdexcept>
#include <unordered_map>

namespace {

using List = KWPropertyList;

class Copier {
  public:
    Copier(const List& from, List& to) : _from(from), _to(to) {}

    List::Index copy(List::Index node, int depth) {
        const auto [known, isNew] = _copies.try_emplace(node, List::none);
        if (!isNew) {
            if (known->second == List::none)
                fail(KWArchiveError::Kind::damaged, node, "a container holds itself");
            return known->second;
        }
        if (depth > KWArchiveMaximumDepth)
            fail(KWArchiveError::Kind::unsupported, node, "containers are nested too deeply");
        const List::Index made = make(node, depth);
        _copies[node] = made;
        return made;
    }

  private:
    List::Index make(List::Index node, int depth) {
        switch (_from.kind(node)) {
        case List::Kind::null:
            return _to.addNull();
        case List::Kind::boolean:
            return _to.addBool(_from.boolValue(node));
        case List::Kind::integer:
            return _from.isUnsigned(node)
                       ? _to.addUnsigned(static_cast<std::uint64_t>(_from.intValue(node)))
                       : _to.addInt(_from.intValue(node));
        case List::Kind::real:
            return _from.isSingle(node) ? _to.addFloat(static_cast<float>(_from.realValue(node)))
                                        : _to.addDouble(_from.realValue(node));
        case List::Kind::date:
            return _to.addDate(_from.realValue(node));
        case List::Kind::data:
            return _to.addData(_from.dataValue(node));
        case List::Kind::string:
            return _to.addString(_from.stringValue(node));
        case List::Kind::uid:
            return _to.addUID(_from.uidValue(node));
        case List::Kind::array:
            return _to.addArray(children(node, depth));
        case List::Kind::set:
            return _to.addSet(children(node, depth));
        case List::Kind::dictionary: {
            const std::vector<List::Index> all = children(node, depth);
            const auto half = std::span(all).first(all.size() / 2);
            return _to.addDictionary(half, std::span(all).last(half.size()));
        }
        }
        throw std::logic_error("a property list node of no kind");
    }

    std::vector<List::Index> children(List::Index node, int depth) {
        std::vector<List::Index> copies;
        for (const List::Index child : _from.children(node))
            copies.push_back(copy(child, depth + 1));
        return copies;
    }

    [[noreturn]] void fail(KWArchiveError::Kind kind, List::Index node,
                           const std::string& reason) const {
        throw KWArchiveError(kind, _from.file(), _from.offset(node), {}, reason);
    }

    const List& _from;
    List& _to;
    std::unordered_map<List::Index, List::Index> _copies;
};

} // namespace

List::Index kwCopyPropertyListNode(const List& from, List::Index node, List& to) {
    return Copier(from, to).copy(node, 0);
}

KWPropertyList kwCopyPropertyList(const KWPropertyList& from) {
    KWPropertyList copy;
    copy.setRoot(kwCopyPropertyListNode(from, from.root(), copy));
    return copy;
}
