#include "SequentialBytes.h"
#include "Thoroughness.h"
#include "UnarchiverTestSupport.h"

#include <KWFoundation/KWArchiveError.h>
#include <KWFoundation/KWArchiver.h>
#include <KWFoundation/KWUnarchiver.h>
#include <KWFoundation/KWUnknownObject.h>

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <optional>
#include <random>

namespace {

using Kind = KWArchiveError::Kind;

KWData stream(const std::string& body) {
    return bytesOf(littleEndianHeader + body);
}

void expectError(const KWData& bytes, Kind kind, const std::string& part,
                 KWUnarchivingOptions options = {}) {
    expectErrorOf<KWUnarchiver>(bytes, kind, part, options);
}

/// Writes calls of every kind, which ones its number decides.
class Anything final : public KWObject {
  public:
    explicit Anything(unsigned number) : _number(number) {}
    static const KWClass& classObject() {
        static constinit KWClass theClass{"Anything", &KWObject::classObject, 4, nullptr};
        return theClass;
    }
    const KWClass& isa() const override { return classObject(); }
    void encodeWithCoder(KWCoder& coder) const override {
        std::mt19937 random(_number);
        for (auto calls = random() % 30; calls > 0; --calls)
            encodeOne(coder, static_cast<unsigned>(random() % 14), static_cast<unsigned>(random()));
    }
    const KWArchiveValue& held(unsigned which) const { return values[which % values.size()]; }

    std::vector<KWArchiveValue> values;
    std::vector<std::weak_ptr<KWObject>> others;

  private:
    void encodeOne(KWCoder& coder, unsigned kind, unsigned bits) const {
        const auto other = others[bits % others.size()].lock();
        const auto real = std::bit_cast<float>(bits);
        const std::int32_t integers[] = {static_cast<std::int32_t>(bits), 300, -5};
        const std::optional<std::string> words(std::string(bits % 3, 'f'));
        struct {
            float f = 0.5F;
            std::int16_t s[2] = {1, -300};
            char c = '\x84';
            double d = 1e300;
        } const record;
        const std::uint64_t wide = std::uint64_t{bits} << (bits % 40);
        switch (kind) {
        case 0:
            return coder.encodeConditionalObject(other);
        case 1:
            return coder.encodeValuesOfObjCTypesAt("i", {integers});
        case 2:
            return coder.encodeValuesOfObjCTypesAt("ff", {&real, &record.f});
        case 3:
            return coder.encodeValuesOfObjCTypesAt("*@*", {&words, &held(bits), &words});
        case 4:
            return coder.encodeArrayOfObjCTypeCountAt("i", bits % 4, integers);
        case 5:
            return coder.encodeValuesOfObjCTypesAt("{r=f[2s]cd}", {&record});
        case 6:
            return coder.encodeBytes(dataOf(*words));
        case 7:
            return coder.encodeDataObject(dataOf(*words));
        case 8:
            return coder.encodeFloats(std::array<float, 4>{real, 1, -0.5F, real});
        case 9:
            return coder.encodeRecords(KWData((bits % 4) * 8, std::byte{7}), 8);
        case 10:
            return coder.encodeValuesOfObjCTypesAt("Q", {&wide});
        default:
            return coder.encodeObject(held(bits));
        }
    }

    unsigned _number;
};

/// Values of all kinds that a stream can hold, with much of it shared and the objects in cycles.
/// No object holds a list that holds objects, as no list may lead back to itself.
struct RandomGraph {
    explicit RandomGraph(unsigned seed) : random(seed) {
        addLists(4);
        const std::size_t plain = values.size();
        for (unsigned k = 0; k < 12; ++k) {
            all.push_back(std::make_shared<Anything>(static_cast<unsigned>(random())));
            values.emplace_back(all.back());
            addLists(1);
        }
        for (const auto& each : all) {
            for (unsigned k = 0; k < 6; ++k) {
                each->values.push_back(values[random() % plain]);
                each->values.push_back(KWArchiveValue::backReference(all[random() % all.size()]));
                each->others.push_back(all[random() % all.size()]);
            }
        }
    }
    void addLists(unsigned count) {
        for (; count > 0; --count) {
            std::vector<KWArchiveValue> list;
            for (auto length = random() % 5; length > 0; --length)
                list.push_back(values[random() % values.size()]);
            values.push_back(random() % 2 == 0 ? KWArchiveValue::mutableArray(list)
                                               : KWArchiveValue::immutableArray(list));
        }
    }

    std::mt19937 random;
    std::vector<std::shared_ptr<Anything>> all;
    std::vector<KWArchiveValue> values{
        nullptr,
        "text",
        std::make_shared<const KWArchiveString>(KWArchiveString{"m\u00fctable", true}),
        dataOf("data"),
        KWNumber(0.5F),
        KWNumber(std::int64_t{1} << 50),
        KWNumber(KWNumber::Type::int8, -124),
        KWNumber(-1e-300)};
};

} // namespace

TEST(KWTypedStreamReader, RefusesAClassThatIsItsOwnSuperclass) {
    expectError(stream("84 01 \"@\" 84 84 84 06 \"Gadget\" 00 93 86"), Kind::damaged,
                "the class \"Gadget\" is its own superclass", keeping);
    expectError(stream("84 01 \"@\" 84 84 84 06 \"Gadget\" 00 85"
                       "84 01 \"#\" 84 84 04 \"Left\" 00 84 84 05 \"Right\" 00 94 86"),
                Kind::damaged, "the class \"Left\" is its own superclass", keeping);
}

TEST(KWTypedStreamReader, StructsAndArraysInsideEachOtherAreLevelsToo) {
    const int inner = 30;
    std::string type;
    for (int k = 0; k < inner; ++k)
        type += "{=";
    type += "@" + std::string(inner, '}');
    const auto nested = [&](int objects) {
        std::string bytes = stringOf(stream("84 01 \"@\" 84 84 84 06 \"Gadget\" 00 85 84"));
        bytes += static_cast<char>(type.size()) + type;
        for (int k = 1; k < objects; ++k)
            bytes += stringOf(bytesOf("84 93 94"));
        bytes += stringOf(bytesOf("85"));
        return dataOf(bytes + std::string(static_cast<std::size_t>(objects), '\x86'));
    };
    const KWData most = nested(1000 / (inner + 1));
    EXPECT_EQ(
        KWArchiver::archivedDataWithRootObject(KWUnarchiver::unarchiveValueWithData(most, keeping)),
        most);
    expectError(nested(1000 / (inner + 1) + 1), Kind::unsupported, "nested more than 1000 deep",
                keeping);
    expectError(nested(1000), Kind::unsupported, "nested more than 1000 deep", keeping);
}

TEST(KWTypedStreamReader, LongTypesAndClassesCannotBeRepeatedForever) {
    std::string types = stringOf(stream("84 01 \"@\" 84 84 84 06 \"Gadget\" 00 85 84 82"));
    const std::int32_t length = 1000005;
    types.append(reinterpret_cast<const char*>(&length), sizeof length);
    types += "[0{" + std::string(1000000, 'i') + "}]";
    types += std::string(1000000, '\x94');
    expectError(dataOf(types), Kind::unsupported, "too often", keeping);

    std::string chain = stringOf(stream("84 01 \"@\" 84 84 84 06 \"Gadget\" 00 85 84 01 \"#\""));
    for (int k = 0; k < 2000; ++k)
        chain += stringOf(bytesOf("84 84 04")) + std::to_string(1000 + k) + std::string(1, '\0');
    expectError(dataOf(chain + stringOf(bytesOf("85 86"))), Kind::unsupported,
                "more than 1000 superclasses", keeping);
}

TEST(KWTypedStreamReader, NilBytesReadAsNone) {
    const KWData bytes = stream("84 01 \"+\" 85 92 01 \"a\"");
    KWUnarchiver it(bytes);
    EXPECT_EQ(it.decodeBytes(), KWData());
    EXPECT_EQ(it.decodeBytes(), dataOf("a"));
}

TEST(KWTypedStreamReader, TypesThatDescribeNothingAreNotAskedFor) {
    const KWData bytes = stream("84 02 \"ff\" 01 02");
    float a = 0;
    float b = 0;
    KWUnarchiver it(bytes);
    for (const char* types : {"?", "", "ff", "[f]", "{p=@}", "+", "#", "f?"})
        EXPECT_THROW(it.decodeValueOfObjCTypeAt(types, &a), std::invalid_argument) << types;
    EXPECT_THROW(it.decodeValuesOfObjCTypesAt("f", {&a, &b}), std::invalid_argument);
    EXPECT_THROW(it.decodeArrayOfObjCTypeCountAt("@", 2, &a), std::invalid_argument);
    it.decodeValuesOfObjCTypesAt("ff", {&a, &b});
    EXPECT_EQ(a, 1);
    EXPECT_EQ(b, 2);
}

TEST(KWTypedStreamReader, RandomGraphsOfUnknownObjectsAreWrittenBackUnchanged) {
    std::size_t longest = 0;
    for (unsigned seed = 0; seed < 300; seed += unsigned{placeStep}) {
        const RandomGraph graph(seed);
        std::vector<KWArchiveValue> whole(graph.values.rbegin(), graph.values.rend() - 8);
        const KWData bytes =
            KWArchiver::archivedDataWithRootObject(KWArchiveValue::mutableArray(whole));
        longest = std::max(longest, bytes.size());
        for (const KWUnarchivingOptions options :
             {keeping, KWUnarchivingOptions{.knowsNoClasses = true}})
            EXPECT_TRUE(KWArchiver::archivedDataWithRootObject(
                            KWUnarchiver::unarchiveValueWithData(bytes, options)) == bytes)
                << seed;
    }
    EXPECT_GT(longest, 2000u);
}
