#include <KWFoundation/KWClass.h>
#include <KWFoundation/KWObject.h>

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

static_assert(!std::is_copy_constructible_v<KWClass>);
static_assert(std::is_trivially_destructible_v<KWClass>);

namespace {

class Lamp : public KWObject {
  public:
    static const KWClass& classObject() {
        static constinit KWClass theClass{"TestLamp", &KWObject::classObject, 3,
                                          KWClass::make<Lamp>};
        return theClass;
    }
    const KWClass& isa() const override { return classObject(); }
};

class SpotLamp : public Lamp {
  public:
    static const KWClass& classObject() {
        static constinit KWClass theClass{"TestSpotLamp", &Lamp::classObject, 0,
                                          KWClass::make<SpotLamp>};
        return theClass;
    }
    const KWClass& isa() const override { return classObject(); }
};

} // namespace

TEST(KWClass, TheRootHasNoSuperclass) {
    const KWClass& root = KWObject::classObject();
    EXPECT_EQ(root.name(), "NSObject");
    EXPECT_EQ(root.version(), 0);
    EXPECT_EQ(root.superclass(), nullptr);
}

TEST(KWClass, AnswersWhatItWasMadeOf) {
    const KWClass& lamp = Lamp::classObject();
    EXPECT_EQ(lamp.name(), "TestLamp");
    EXPECT_EQ(lamp.version(), 3);
    EXPECT_EQ(lamp.superclass(), &KWObject::classObject());
    EXPECT_EQ(lamp.standIn(), nullptr);
    EXPECT_EQ(&lamp.factory()()->isa(), &lamp);
}

TEST(KWClass, IsASubclassOfItselfAndItsSuperclassesOnly) {
    EXPECT_TRUE(SpotLamp::classObject().isSubclassOfClass(SpotLamp::classObject()));
    EXPECT_TRUE(SpotLamp::classObject().isSubclassOfClass(Lamp::classObject()));
    EXPECT_TRUE(SpotLamp::classObject().isSubclassOfClass(KWObject::classObject()));
    EXPECT_FALSE(Lamp::classObject().isSubclassOfClass(SpotLamp::classObject()));
    EXPECT_FALSE(KWObject::classObject().isSubclassOfClass(Lamp::classObject()));
    EXPECT_TRUE(SpotLamp().isKindOfClass(Lamp::classObject()));
    EXPECT_FALSE(Lamp().isKindOfClass(SpotLamp::classObject()));
}

TEST(KWClass, IsFoundByNameWhileItIsRegistered) {
    EXPECT_EQ(KWClassNamed("TestLamp"), nullptr);
    KWRegisterClass(Lamp::classObject());
    EXPECT_EQ(KWClassNamed("TestLamp"), &Lamp::classObject());
    EXPECT_EQ(KWClassNamed("TestLam"), nullptr);
    EXPECT_EQ(KWClassNamed(""), nullptr);
    KWUnregisterClass(Lamp::classObject());
    EXPECT_EQ(KWClassNamed("TestLamp"), nullptr);
    KWUnregisterClass(Lamp::classObject());
}

TEST(KWClass, ASecondOneOfTheSameNameTakesTheFirstOnesPlace) {
    static constinit KWClass other{"TestLamp", &KWObject::classObject, 4, KWClass::make<Lamp>};
    KWRegisterClass(Lamp::classObject());
    KWRegisterClass(other);
    EXPECT_EQ(KWClassNamed("TestLamp"), &other);
    KWUnregisterClass(Lamp::classObject());
    EXPECT_EQ(KWClassNamed("TestLamp"), &other);
    KWUnregisterClass(other);
    EXPECT_EQ(KWClassNamed("TestLamp"), nullptr);
}

TEST(KWClass, TheReplacedOnesNameIsUsedNoMore) {
    // As when the library that held the first class has been unloaded.
    std::string name = "TestPassing";
    const KWClass passing(name.c_str(), &KWObject::classObject, 0, nullptr);
    static constinit KWClass lasting{"TestPassing", &KWObject::classObject, 0, nullptr};
    KWRegisterClass(passing);
    KWRegisterClass(lasting);
    name.assign(name.size(), 'x');
    EXPECT_EQ(KWClassNamed("TestPassing"), &lasting);
    KWUnregisterClass(lasting);
    EXPECT_EQ(KWClassNamed("TestPassing"), nullptr);
}

TEST(KWClass, IsRegisteredAndFoundFromAnyThread) {
    KWRegisterClass(SpotLamp::classObject());
    std::atomic<int> misses = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t)
        threads.emplace_back([&misses] {
            for (int i = 0; i < 2000; ++i)
                misses += KWClassNamed("TestSpotLamp") != &SpotLamp::classObject();
        });
    for (int i = 0; i < 500; ++i) {
        KWRegisterClass(Lamp::classObject());
        KWUnregisterClass(Lamp::classObject());
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(misses, 0);
    KWUnregisterClass(SpotLamp::classObject());
}
