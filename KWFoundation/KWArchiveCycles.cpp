#include <KWFoundation/KWArchiveCycles.h>

#include <algorithm>
#include <cstdint>
#include <deque>
#include <new>
#include <span>
#include <unordered_map>

// Everything here takes time and memory by the number of references, whatever an archive does with
// them, and no call nests as deeply as objects do.

namespace {

using Index = std::uint32_t;
constexpr Index noNode = 0xffffffff;

using Edge = std::pair<Index, Index>;

/// Where the edges of a graph lead, node by node.
class Edges {
  public:
    Edges(Index nodeCount, std::span<const Edge> edges, bool isTurned = false)
        : _starts(nodeCount + 1), _targets(edges.size()) {
        const auto from = [&](const Edge& edge) { return isTurned ? edge.second : edge.first; };
        for (const Edge& edge : edges)
            ++_starts[from(edge)];
        Index end = 0;
        for (Index& start : _starts)
            start = end += start;
        for (auto edge = edges.rbegin(); edge != edges.rend(); ++edge)
            _targets[--_starts[from(*edge)]] = isTurned ? edge->first : edge->second;
    }
    std::span<const Index> of(Index node) const {
        return std::span(_targets).subspan(_starts[node], _starts[node + 1] - _starts[node]);
    }

  private:
    std::vector<Index> _starts;
    std::vector<Index> _targets;
};

/// A step on a way through a graph.
struct Visit {
    Index node;
    std::size_t next = 0;
};

/// The sets of nodes that lead to each other (Tarjan's), each behind those that lead to it.
class Components {
  public:
    Components(Index nodeCount, const Edges& edges)
        : ofNode(nodeCount, noNode), _edges(edges), _number(nodeCount, noNode), _lowest(nodeCount) {
        for (Index node = 0; node < nodeCount; ++node)
            if (_number[node] == noNode)
                visitFrom(node);
        std::ranges::reverse(lists);
        for (Index k = 0; k < lists.size(); ++k)
            for (const Index node : lists[k])
                ofNode[node] = k;
    }

    /// The nodes of each, ascending.
    std::vector<std::vector<Index>> lists;
    std::vector<Index> ofNode;

  private:
    void begin(Index node) {
        _number[node] = _lowest[node] = _count++;
        _open.push_back(node);
        _way.push_back({node});
    }
    void visitFrom(Index start) {
        begin(start);
        while (!_way.empty()) {
            const Index node = _way.back().node;
            const auto targets = _edges.of(node);
            if (_way.back().next < targets.size()) {
                const Index target = targets[_way.back().next++];
                if (_number[target] == noNode)
                    begin(target);
                else if (ofNode[target] == noNode)
                    _lowest[node] = std::min(_lowest[node], _number[target]);
                continue;
            }
            _way.pop_back();
            if (!_way.empty())
                _lowest[_way.back().node] = std::min(_lowest[_way.back().node], _lowest[node]);
            if (_lowest[node] == _number[node])
                close(node);
        }
    }
    void close(Index first) {
        std::vector<Index> nodes;
        do {
            nodes.push_back(_open.back());
            ofNode[_open.back()] = 0;
            _open.pop_back();
        } while (nodes.back() != first);
        std::ranges::sort(nodes);
        lists.push_back(std::move(nodes));
    }

    const Edges& _edges;
    std::vector<Index> _number;
    std::vector<Index> _lowest;
    std::vector<Index> _open;
    std::vector<Visit> _way;
    Index _count = 0;
};

/// Nodes in an order in which each stands behind all that hold it for good, and behind one that is
/// reached from the root itself and refers to it, as far as there is such an order.
class Order {
  public:
    /// `fixed` are those of `all` edges by which a node holds another for good.
    Order(Index nodeCount, std::span<const Edge> all, std::span<const Edge> fixed)
        : _all(nodeCount, all), _fixed(nodeCount, fixed), _holders(nodeCount, fixed, true),
          _components(nodeCount, _all), _places(nodeCount, noNode), _freeHolders(nodeCount),
          _reached(nodeCount, Reached::never), _isVisited(nodeCount) {
        for (Index node = 0; node < nodeCount; ++node)
            _freeHolders[node] = static_cast<Index>(_holders.of(node).size());
    }

    void find(Index root) {
        if (root != noNode)
            _reached[root] = Reached::fromRoot;
        for (_component = 0; _component < _components.lists.size(); ++_component) {
            const std::vector<Index>& nodes = _components.lists[_component];
            for (const Reached least : {Reached::fromRoot, Reached::fromElsewhere}) {
                _least = least;
                for (const Index node : nodes)
                    if (_reached[node] >= least)
                        enqueue(node);
                takeQueued();
            }
            // Nobody refers to these yet. Somebody may later, and first to what was met first.
            for (const Index node : nodes)
                if (_places[node] == noNode) {
                    reach(node, Reached::fromElsewhere);
                    takeQueued();
                }
        }
    }

    /// Whether a reference is part of a circle, and leads back in the order.
    bool isAgainst(const Edge& edge) const {
        return _components.ofNode[edge.first] == _components.ofNode[edge.second] &&
               _places[edge.second] <= _places[edge.first];
    }

  private:
    /// By references that are not cut.
    enum class Reached : std::uint8_t { never, fromElsewhere, fromRoot };

    bool isNext(Index node) const {
        return _components.ofNode[node] == _component && _reached[node] >= _least;
    }
    void enqueue(Index node) { (_freeHolders[node] == 0 ? _ready : _waiting).push_back(node); }

    void reach(Index node, Reached how) {
        if (_reached[node] >= how)
            return;
        _reached[node] = how;
        if (isNext(node))
            enqueue(node);
    }

    void takeQueued() {
        const auto first = [](std::deque<Index>& queue) {
            const Index node = queue.front();
            queue.pop_front();
            return node;
        };
        while (!_ready.empty() || !_waiting.empty()) {
            if (!_ready.empty())
                take(first(_ready));
            else // only what waits leads to its holders: they come first, and may be lost
                takeBehindHolders(first(_waiting));
        }
    }

    void take(Index node) {
        if (_places[node] != noNode)
            return;
        _places[node] = _count++;
        for (const Index target : _fixed.of(node))
            if (--_freeHolders[target] == 0 && isNext(target))
                _ready.push_back(target);
        for (const Index target : _all.of(node))
            reach(target, _reached[node]);
    }

    void takeBehindHolders(Index last) {
        const auto begin = [this](Index node) {
            if (_places[node] == noNode && !_isVisited[node]) {
                _isVisited[node] = true;
                _way.push_back({node});
            }
        };
        begin(last);
        while (!_way.empty()) {
            Visit& visit = _way.back();
            const auto holders = _holders.of(visit.node);
            if (visit.next < holders.size()) {
                begin(holders[visit.next++]);
                continue;
            }
            take(visit.node);
            _way.pop_back();
        }
    }

    Edges _all;
    Edges _fixed;
    Edges _holders;
    Components _components;
    std::vector<Index> _places;
    /// How many of those who hold a node have no place yet.
    std::vector<Index> _freeHolders;
    std::vector<Reached> _reached;
    std::vector<bool> _isVisited;
    std::deque<Index> _ready;
    std::deque<Index> _waiting;
    std::vector<Visit> _way;
    Index _component = 0;
    Reached _least = Reached::fromRoot;
    Index _count = 0;
};

template <class Fields, class Function>
void forEachValue(Fields& fields, Function function) {
    for (auto& field : fields) {
        function(field.value);
        forEachValue(field.items, function);
    }
}

bool isObjectItself(const KWArchiveValue& value) {
    return !value.isBackReference() && value.object();
}

} // namespace

/// What refers to something, and to what.
class KWArchiveCycles::Graph {
  public:
    explicit Graph(const KWArchiveCycles& cycles) : _cycles(cycles) {
        for (const Unknown& unknown : cycles._unknowns)
            addNode(unknown.object.get());
        for (const Hold& hold : cycles._holds)
            addNode(hold.holder.get());
        for (const auto& array : cycles._arrays)
            addNode(array.get());
        for (const Unknown& unknown : cycles._unknowns)
            forEachValue(unknown.contents->fields(), [&](const KWArchiveValue& value) {
                addReference(node(unknown.object.get()), value);
            });
        for (const auto& array : cycles._arrays)
            for (const KWArchiveValue& element : array->elements)
                addReference(node(array.get()), element);
        for (const Hold& hold : cycles._holds)
            addHold(node(hold.holder.get()), hold.value);
        _all.insert(_all.end(), _fixed.begin(), _fixed.end());
    }

    void cut(const KWArchiveValue& root) {
        Order order(static_cast<Index>(_nodes.size()), _all, _fixed);
        order.find(node(root.identity()));
        for (const Unknown& unknown : _cycles._unknowns)
            cutFields(order, unknown);
        for (const auto& array : _cycles._arrays)
            for (KWArchiveValue& element : array->elements)
                cutReference(order, array.get(), element);
    }

  private:
    void addNode(const void* identity) {
        _nodes.try_emplace(identity, static_cast<Index>(_nodes.size()));
    }
    /// noNode for what refers to nothing, or was added before.
    Index node(const void* identity) const {
        const auto found = _nodes.find(identity);
        return found == _nodes.end() ? noNode : found->second;
    }
    static void addEdge(std::vector<Edge>& edges, Index from, Index to) {
        if (to != noNode)
            edges.emplace_back(from, to);
    }

    void addReference(Index from, const KWArchiveValue& value) {
        if (value.array())
            addEdge(_fixed, from, node(value.array()));
        else if (isObjectItself(value))
            addEdge(_all, from, node(value.identity()));
    }
    void addHold(Index from, const KWArchiveValue& value) {
        if (!value.array())
            return addEdge(_fixed, from, node(value.identity()));
        for (const KWArchiveValue& element : value.array()->elements)
            addEdge(_fixed, from, node(element.identity()));
    }

    void cutReference(const Order& order, const void* from, KWArchiveValue& value) const {
        if (!isObjectItself(value))
            return;
        const Index to = node(value.identity());
        if (to != noNode && order.isAgainst({node(from), to}))
            value = KWArchiveValue::backReference(value.object());
    }
    void cutFields(const Order& order, const Unknown& unknown) const {
        std::vector<KWArchiveField> fields = unknown.contents->fields();
        forEachValue(fields, [&](KWArchiveValue& value) {
            cutReference(order, unknown.object.get(), value);
        });
        unknown.contents->setFields(std::move(fields));
    }

    const KWArchiveCycles& _cycles;
    std::unordered_map<const void*, Index> _nodes;
    std::vector<Edge> _all;
    /// References that cannot be cut: to lists, and of registered classes.
    std::vector<Edge> _fixed;
};

KWArchiveCycles::~KWArchiveCycles() {
    try {
        cut(nullptr);
    } catch (const std::bad_alloc&) { // better lost than terminated
    }
}

void KWArchiveCycles::addUnknown(const std::shared_ptr<KWObject>& object,
                                 const std::shared_ptr<KWUnknownObject>& contents) {
    if (_isWanted)
        _unknowns.push_back({object, contents});
}

KWArchiveValue KWArchiveCycles::array(std::vector<KWArchiveValue> elements, bool isMutable) {
    const auto made =
        std::make_shared<KWArchiveArray>(KWArchiveArray{std::move(elements), isMutable});
    if (_isWanted) {
        _hasBackReferences =
            _hasBackReferences || std::ranges::any_of(made->elements, [](const auto& element) {
                return element.isBackReference();
            });
        _arrays.push_back(made);
    }
    return KWArchiveValue(std::shared_ptr<const KWArchiveArray>(made));
}

void KWArchiveCycles::hold(const KWArchiveValue& value) {
    if (_isWanted && _reading && (value.array() || isObjectItself(value)))
        _holds.push_back({_reading, value});
}

void KWArchiveCycles::cut(const KWArchiveValue& root) {
    if (_hasBackReferences && !_unknowns.empty() && !_holds.empty())
        Graph(*this).cut(root);
    _hasBackReferences = false;
    _unknowns.clear();
    _arrays.clear();
    _holds.clear();
}
