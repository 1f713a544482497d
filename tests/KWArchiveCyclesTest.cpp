#include "ArchiveTestClasses.h"

#include <KWFoundation/KWArchiveCycles.h>
#include <KWFoundation/KWArchiver.h>
#include <KWFoundation/KWKeyedArchiver.h>
#include <KWFoundation/KWKeyedUnarchiver.h>
#include <KWFoundation/KWUnarchiver.h>

#include <gtest/gtest.h>

#include <array>
#include <numeric>
#include <random>

namespace {

/// What a reader says of a few objects, which have numbers here.
class Reader {
  public:
    explicit Reader(std::size_t count) : _fields(count) {
        for (std::size_t k = 0; k < count; ++k) {
            objects.push_back(std::make_shared<KWUnknownObject>());
            objects[k]->setClassChain({std::to_string(k)});
            cycles.addUnknown(objects[k], objects[k]);
        }
        cycles.array({KWArchiveValue::backReference(_other)}, true);
    }
    // What is not cut, the test does not leave either.
    ~Reader() {
        for (const auto& object : objects)
            object->setFields({});
    }

    void refer(std::size_t from, std::size_t to) { addField(from, objects[to]); }
    void referToList(std::size_t from, const std::vector<std::size_t>& elements) {
        addField(from, list(elements));
    }
    /// As a registered class does; here it is reckoned with alone.
    void hold(std::size_t from, std::size_t to) { hold(from, KWArchiveValue(objects[to])); }
    void holdElements(std::size_t from, const std::vector<std::size_t>& elements) {
        hold(from, list(elements));
    }

    void cut(std::size_t root) {
        for (std::size_t k = 0; k < objects.size(); ++k)
            objects[k]->setFields(std::move(_fields[k]));
        cycles.cut(objects[root]);
    }

    /// What an object's fields keep alive, in order.
    std::vector<std::size_t> kept(std::size_t from) const {
        std::vector<std::size_t> numbers;
        const auto add = [&](const KWArchiveValue& value) {
            if (value.object() && !value.isBackReference())
                numbers.push_back(std::stoul(value.object()->unknownContents()->className()));
        };
        for (const KWArchiveField& field : objects[from]->fields()) {
            add(field.value);
            for (std::size_t k = 0; field.value.array() && k < field.value.array()->elements.size();
                 ++k)
                add(field.value.array()->elements[k]);
        }
        return numbers;
    }

    std::vector<std::shared_ptr<KWUnknownObject>> objects;
    KWArchiveCycles cycles{true};

  private:
    void addField(std::size_t from, KWArchiveValue value) {
        _fields[from].push_back({.key = "", .value = std::move(value), .items = {}});
    }
    void hold(std::size_t from, const KWArchiveValue& value) {
        const KWArchiveCycles::Reading reading(cycles, objects[from]);
        cycles.hold(value);
    }
    KWArchiveValue list(const std::vector<std::size_t>& elements) {
        std::vector<KWArchiveValue> values;
        for (const std::size_t element : elements)
            values.emplace_back(objects[element]);
        return cycles.array(std::move(values), true);
    }

    std::shared_ptr<KWObject> _other = std::make_shared<Part>();
    std::vector<std::vector<KWArchiveField>> _fields;
};

using Numbers = std::vector<std::size_t>;

/// Few enough nodes to try every order.
constexpr std::size_t few = 6;
using Matrix = std::array<std::array<bool, few>, few>;

Matrix closure(Matrix edges) {
    for (std::size_t via = 0; via < few; ++via)
        for (std::size_t from = 0; from < few; ++from)
            for (std::size_t to = 0; to < few; ++to)
                edges[from][to] = edges[from][to] || (edges[from][via] && edges[via][to]);
    return edges;
}

Matrix both(Matrix edges, const Matrix& others) {
    for (std::size_t from = 0; from < few; ++from)
        for (std::size_t to = 0; to < few; ++to)
            edges[from][to] = edges[from][to] || others[from][to];
    return edges;
}

bool hasCircle(const Matrix& edges) {
    const Matrix leads = closure(edges);
    for (std::size_t k = 0; k < few; ++k)
        if (leads[k][k])
            return true;
    return false;
}

std::size_t countFrom0(const Matrix& edges) {
    const Matrix leads = closure(edges);
    return static_cast<std::size_t>(std::count(leads[0].begin() + 1, leads[0].end(), true));
}

/// Whether references can be cut so that no circle is left, and everything stays.
bool canKeepAll(const Matrix& references, const Matrix& holds) {
    const std::size_t all = countFrom0(both(references, holds));
    std::array<std::size_t, few> place{};
    std::iota(place.begin(), place.end(), 0);
    do {
        Matrix left = holds;
        bool isOrder = true;
        for (std::size_t from = 0; from < few; ++from)
            for (std::size_t to = 0; to < few; ++to) {
                isOrder = isOrder && !(holds[from][to] && place[to] < place[from]);
                left[from][to] =
                    left[from][to] || (references[from][to] && place[from] < place[to]);
            }
        if (isOrder && countFrom0(left) == all)
            return true;
    } while (std::next_permutation(place.begin(), place.end()));
    return false;
}

/// Holds the elements of its list for good, and points at a peer.
class Bag : public KWObject {
  public:
    Bag() { ++count; }
    ~Bag() override { --count; }
    static const KWClass& classObject() {
        static constinit KWClass theClass{"Bag", &KWObject::classObject, 0, KWClass::make<Bag>};
        return theClass;
    }
    const KWClass& isa() const override { return classObject(); }
    void encodeWithCoder(KWCoder& coder) const override {
        const auto list = KWArchiveValue::mutableArray({items.begin(), items.end()});
        if (coder.allowsKeyedCoding()) {
            coder.encodeConditionalObjectForKey(peer.lock(), "peer");
            coder.encodeObjectForKey(list, "items");
            coder.encodeObjectForKey(inner, "inner");
        } else {
            coder.encodeConditionalObject(peer.lock());
            coder.encodeObject(list);
            coder.encodeObject(inner);
        }
    }
    bool initWithCoder(KWCoder& coder) override {
        if (coder.allowsKeyedCoding()) {
            peer = coder.decodeBackPointerOfClassForKey<KWObject>("peer");
            items = coder.decodeObjectsOfClassForKey<KWObject>("items").value_or(decltype(items)());
            inner = coder.decodeObjectOfClassForKey<Bag>("inner");
        } else {
            peer = coder.decodeBackPointerOfClass<KWObject>("peer");
            items = coder.decodeObjectsOfClass<KWObject>("items").value_or(decltype(items)());
            inner = coder.decodeObjectOfClass<Bag>("inner");
        }
        return true;
    }

    static inline int count = 0;
    std::vector<std::shared_ptr<KWObject>> items;
    std::shared_ptr<Bag> inner;
    std::weak_ptr<KWObject> peer;
};

/// The same of a class that the reader does not know.
class Sack final : public Bag {
  public:
    const KWClass& isa() const override {
        static constinit KWClass theClass{"Sack", &KWObject::classObject, 0, nullptr};
        return theClass;
    }
};

/// Whoever reads it fails.
class Thorn final : public KWObject {
  public:
    static const KWClass& classObject() {
        static constinit KWClass theClass{"Thorn", &KWObject::classObject, 0, KWClass::make<Thorn>};
        return theClass;
    }
    const KWClass& isa() const override { return classObject(); }
    bool initWithCoder(KWCoder& coder) override {
        coder.failDecoding("ouch", {});
        return false;
    }
};

/// Bags and sacks in each other, at random; bags alone in no circle, as nobody could cut that.
std::vector<std::shared_ptr<Bag>> randomBags(unsigned seed) {
    std::mt19937 random(seed);
    const auto below = [&](std::size_t bound) {
        return static_cast<std::size_t>(random() % bound);
    };
    std::vector<std::shared_ptr<Bag>> all;
    const std::size_t count = 2 + below(20);
    for (std::size_t k = 0; k < count; ++k)
        all.push_back(below(2) == 0 ? std::make_shared<Bag>() : std::make_shared<Sack>());
    const auto isSack = [&](std::size_t k) { return &all[k]->isa() != &Bag::classObject(); };
    for (std::size_t k = 0; k < count; ++k) {
        if (k > 0)
            all[below(k)]->items.push_back(all[k]);
        for (std::size_t more = below(3); more > 0; --more) {
            const std::size_t other = below(count);
            if (isSack(k) || isSack(other) || other > k)
                all[k]->items.push_back(all[other]);
        }
        if (below(4) == 0) {
            all[k]->inner = std::make_shared<Bag>();
            all[k]->inner->items.push_back(all[below(count)]);
            if (!isSack(k) && !std::dynamic_pointer_cast<Sack>(all[k]->inner->items[0]))
                all[k]->inner->items.clear();
        }
        all[k]->peer = all[below(count)];
    }
    return all;
}

void empty(const std::vector<std::shared_ptr<Bag>>& bags) {
    for (const auto& bag : bags) {
        bag->items.clear();
        bag->inner = nullptr;
    }
}

KWArchiveValue read(const KWData& bytes) {
    constexpr KWUnarchivingOptions keeping{.keepsUnknownObjects = true};
    return KWUnarchiver::isArchive(bytes)
               ? KWUnarchiver::unarchiveValueWithData(bytes, keeping)
               : KWKeyedUnarchiver::unarchiveValueWithData(bytes, keeping);
}

std::array<KWData, 2> bothForms(const KWArchiveValue& root) {
    return {KWKeyedArchiver::archivedDataWithRootObject(root),
            KWArchiver::archivedDataWithRootObject(root)};
}

} // namespace

TEST(KWArchiveCycles, AnObjectDoesNotKeepWhatHoldsIt) {
    Reader it(2);
    it.refer(0, 1);
    it.holdElements(1, {0});
    it.cut(0);
    EXPECT_EQ(it.kept(0), Numbers());
}

TEST(KWArchiveCycles, WhatIsHeldElsewhereIsCutThere) {
    // A document, its selected channel, its array and a group in it that lists the channel.
    Reader it(4);
    it.refer(0, 1);
    it.refer(1, 3);
    it.refer(0, 2);
    it.holdElements(2, {3});
    it.holdElements(3, {1});
    it.cut(0);
    EXPECT_EQ(it.kept(0), (Numbers{1, 2}));
    EXPECT_EQ(it.kept(1), Numbers());
}

TEST(KWArchiveCycles, NothingIsCutThatClosesNoCircle) {
    Reader it(4);
    it.refer(0, 1);
    it.refer(0, 2);
    it.refer(2, 1);
    it.refer(3, 2);
    it.referToList(3, {1, 2});
    it.hold(2, 1);
    it.cut(0);
    EXPECT_EQ(it.kept(0), (Numbers{1, 2}));
    EXPECT_EQ(it.kept(2), Numbers{1});
    EXPECT_EQ(it.kept(3), (Numbers{2, 1, 2}));
}

TEST(KWArchiveCycles, ElementsOfListsAreCutAlone) {
    Reader it(3);
    it.referToList(0, {1, 2});
    it.holdElements(1, {0});
    it.cut(0);
    EXPECT_EQ(it.kept(0), Numbers{2});
}

TEST(KWArchiveCycles, ListsInFieldsInFieldsAreCutToo) {
    Reader it(2);
    it.holdElements(1, {0});
    it.cycles.array({KWArchiveValue(it.objects[1])}, true);
    KWArchiveField inner{.key = "in", .value = KWArchiveValue(it.objects[1]), .items = {}};
    it.objects[0]->setFields(
        {{.key = "out", .form = KWArchiveField::Form::list, .value = {}, .items = {inner}}});
    it.cycles.cut(it.objects[0]);
    EXPECT_TRUE(it.objects[0]->fields()[0].items[0].value.isBackReference());
    EXPECT_EQ(it.objects[0]->fields()[0].items[0].value.object(), it.objects[1]);
}

TEST(KWArchiveCycles, OnlyWhatMustBeIsLostWhereNothingElseHoldsACircle) {
    // 1 is held by 3 alone, and 3 is referred to only through 1: of the way there, its end is cut.
    Reader it(5);
    it.refer(0, 1);
    it.refer(1, 2);
    it.refer(2, 3);
    it.hold(3, 1);
    it.hold(3, 4);
    it.cut(0);
    EXPECT_EQ(it.kept(0), Numbers{1});
    EXPECT_EQ(it.kept(1), Numbers{2});
    EXPECT_EQ(it.kept(2), Numbers());
}

TEST(KWArchiveCycles, WhatNobodyRefersToYetKeepsItsOwn) {
    Reader it(4);
    it.refer(2, 3);
    it.holdElements(3, {2});
    it.refer(1, 2);
    it.cut(0);
    EXPECT_EQ(it.kept(1), Numbers{2});
    EXPECT_EQ(it.kept(2), Numbers());
}

TEST(KWArchiveCycles, RegisteredObjectsThatHoldEachOtherAreLeftAlone) {
    Reader it(3);
    it.refer(0, 1);
    it.hold(1, 2);
    it.hold(2, 1);
    it.hold(2, 2);
    it.cut(0);
    EXPECT_EQ(it.kept(0), Numbers{1});
}

TEST(KWArchiveCycles, LongCirclesTakeNoStack) {
    constexpr std::size_t count = 100000;
    Reader it(count);
    for (std::size_t k = 1; k < count; ++k)
        if (k % 2 == 0)
            it.hold(k - 1, k);
        else
            it.refer(k - 1, k);
    it.hold(count - 1, 0);
    it.cut(0);
    EXPECT_EQ(it.kept(0), Numbers{1});
    EXPECT_EQ(it.kept(count - 4), Numbers{count - 3});
    EXPECT_EQ(it.kept(count - 2), Numbers());
}

TEST(KWArchiveCycles, RandomGraphsLoseTheirCirclesAndNothingThatCouldStay) {
    int kept = 0;
    for (unsigned seed = 0; seed < 500; ++seed) {
        std::mt19937 random(seed);
        Matrix references{};
        Matrix holds{};
        Reader it(few);
        for (std::size_t from = 0; from < few; ++from)
            for (std::size_t to = 0; to < few; ++to) {
                references[from][to] = from != to && random() % 4 == 0;
                holds[from][to] = from != to && random() % 8 == 0;
            }
        if (hasCircle(holds) || holds == Matrix{})
            continue;
        for (std::size_t from = 0; from < few; ++from)
            for (std::size_t to = 0; to < few; ++to) {
                if (references[from][to])
                    it.refer(from, to);
                if (holds[from][to])
                    it.hold(from, to);
            }
        it.cut(0);
        Matrix left{};
        for (std::size_t from = 0; from < few; ++from)
            for (const std::size_t to : it.kept(from))
                left[from][to] = true;
        EXPECT_FALSE(hasCircle(both(left, holds))) << seed;
        const Matrix leads = closure(both(references, holds));
        for (std::size_t from = 0; from < few; ++from)
            for (std::size_t to = 0; to < few; ++to)
                EXPECT_EQ(left[from][to],
                          references[from][to] && (left[from][to] || !leads[to][from]))
                    << seed;
        if (canKeepAll(references, holds)) {
            ++kept;
            EXPECT_EQ(countFrom0(both(left, holds)), countFrom0(both(references, holds))) << seed;
        }
    }
    EXPECT_GT(kept, 50);
}

TEST(KWArchiveCycles, RandomArchivesAreReadAndLetGo) {
    const Registration known(Bag::classObject());
    for (unsigned seed = 0; seed < 300; ++seed) {
        const auto bags = randomBags(seed);
        const auto forms = bothForms(bags[0]);
        empty(bags);
        const int before = Bag::count;
        for (const KWData& bytes : forms) {
            EXPECT_TRUE(read(bytes).object());
            EXPECT_EQ(Bag::count, before) << seed;
        }
    }
}

TEST(KWArchiveCycles, WhatAFailedReadingLeavesIsLetGoToo) {
    const Registration known(Bag::classObject());
    const Registration thorn(Thorn::classObject());
    const auto root = std::make_shared<Sack>();
    const auto sack = std::make_shared<Sack>();
    const auto bag = std::make_shared<Bag>();
    sack->items = {bag};
    bag->items = {sack};
    root->items = {sack, std::make_shared<Thorn>()};
    const auto forms = bothForms(root);
    empty({root, sack, bag});
    const int before = Bag::count;
    for (const KWData& bytes : forms) {
        EXPECT_THROW(read(bytes), KWArchiveError);
        EXPECT_EQ(Bag::count, before);
    }
}

TEST(KWArchiveCycles, AWholeIsNotLostForAPartThatPointsBackAtIt) {
    // The sack is first met as the peer of a bag that it lists itself.
    const Registration known(Bag::classObject());
    const auto root = std::make_shared<Sack>();
    const auto sack = std::make_shared<Sack>();
    const auto list = std::make_shared<Bag>();
    const auto bag = std::make_shared<Bag>();
    root->items = {bag, sack};
    bag->peer = sack;
    sack->items = {list};
    list->items = {bag};
    for (const KWData& bytes : bothForms(root)) {
        const auto back = read(bytes).object();
        ASSERT_TRUE(back);
        std::vector<KWArchiveValue> found;
        const auto items = [](const std::shared_ptr<KWObject>& object) {
            const KWUnknownObject* const contents = object->unknownContents();
            const KWArchiveField& field = contents->isSequential()
                                              ? contents->fields().at(1).items.at(0)
                                              : *contents->field("items");
            return field.value.array()->elements;
        };
        const auto inner = items(back).at(1).object();
        ASSERT_TRUE(inner);
        EXPECT_FALSE(items(inner).at(0).isBackReference());
        const auto listed = std::dynamic_pointer_cast<Bag>(items(inner).at(0).object());
        ASSERT_TRUE(listed);
        EXPECT_EQ(listed->items.at(0), items(back).at(0).object());
        EXPECT_EQ(std::dynamic_pointer_cast<Bag>(listed->items.at(0))->peer.lock(), inner);
    }
    empty({root, sack, list, bag});
}
