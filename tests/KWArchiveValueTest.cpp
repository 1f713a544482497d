#include "ArchiveTestClasses.h"

#include <KWFoundation/KWArchiveValue.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

static_assert(std::is_nothrow_move_constructible_v<KWArchiveValue>);
static_assert(std::is_trivially_copyable_v<KWNumber>);

TEST(KWNumber, KeepsItsWidth) {
    EXPECT_EQ(KWNumber(1.0F).type(), KWNumber::Type::float32);
    EXPECT_EQ(KWNumber(1.0).type(), KWNumber::Type::float64);
    EXPECT_EQ(KWNumber(true).type(), KWNumber::Type::boolean);
    EXPECT_EQ(KWNumber(std::int32_t{1}).type(), KWNumber::Type::int32);
    EXPECT_FALSE(KWNumber(1.0F) == KWNumber(1.0));
    EXPECT_FALSE(KWNumber(0.0F) == KWNumber(-0.0F));
    EXPECT_TRUE(KWNumber(NAN) == KWNumber(NAN));
}

TEST(KWNumber, ConvertsAsTheNearestOfTheRange) {
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(KWNumber(1e300).int64Value(), most);
    EXPECT_EQ(KWNumber(-1e300).int64Value(), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(KWNumber(static_cast<double>(NAN)).int64Value(), 0);
    EXPECT_EQ(KWNumber(-2.9).int64Value(), -2);
    EXPECT_EQ(KWNumber(~std::uint64_t{0}).doubleValue(), 18446744073709551615.0);
    EXPECT_TRUE(KWNumber(0.5F).boolValue());
    EXPECT_FALSE(KWNumber(std::int32_t{0}).boolValue());
}

TEST(KWNumber, ReadsAsPeopleWriteIt) {
    EXPECT_EQ(KWNumber(0.1F).stringValue(), "0.1");
    EXPECT_EQ(KWNumber(2.5F).stringValue(), "2.5");
    EXPECT_EQ(KWNumber(1e20F).stringValue(), "1e+20");
    EXPECT_EQ(KWNumber(0.1).stringValue(), "0.1");
    EXPECT_EQ(KWNumber(std::int32_t{-7}).stringValue(), "-7");
    EXPECT_EQ(KWNumber(~std::uint64_t{0}).stringValue(), "18446744073709551615");
    EXPECT_EQ(KWNumber(true).stringValue(), "1");
}

TEST(KWArchiveValue, AnswersForItsKindAlone) {
    const KWArchiveValue text("abc");
    EXPECT_EQ(text.string()->text, "abc");
    EXPECT_FALSE(text.string()->isMutable);
    EXPECT_EQ(text.number(), nullptr);
    EXPECT_EQ(text.data(), nullptr);
    EXPECT_EQ(text.array(), nullptr);
    EXPECT_EQ(text.object(), nullptr);
    EXPECT_FALSE(text.isNil());
    EXPECT_TRUE(KWArchiveValue().isNil());
    EXPECT_TRUE(KWArchiveValue(std::shared_ptr<KWObject>()).isNil());
    EXPECT_TRUE(KWArchiveValue(std::optional<std::string>()).isNil());
    EXPECT_TRUE(KWArchiveValue::mutableArray({}).array()->isMutable);
}

TEST(KWArchiveValue, ABackReferenceReadsAsNilOnceItsObjectIsGone) {
    auto part = std::make_shared<Part>("p");
    const KWArchiveValue value = KWArchiveValue::backReference(part);
    EXPECT_EQ(value.object(), part);
    EXPECT_EQ(value.kindName(), "Part");
    part.reset();
    EXPECT_TRUE(value.isNil());
    EXPECT_EQ(value.object(), nullptr);
    EXPECT_EQ(value.kindName(), "nil");
}

TEST(KWArchiveValue, CopiesAreTheSameThing) {
    const KWArchiveValue text("abc");
    const KWArchiveValue copy = text;
    EXPECT_EQ(text.identity(), copy.identity());
    EXPECT_NE(text.identity(), KWArchiveValue("abc").identity());
    EXPECT_EQ(KWArchiveValue(KWNumber(1.0)).identity(), nullptr);
}
