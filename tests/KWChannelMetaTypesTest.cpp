#include <KWBase/KWAlgebricChannel.h>
#include <KWBase/KWChannelArray.h>
#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWDesktop/KWChannelMetaTypes.h>

#include <gtest/gtest.h>

namespace {

class HostChannel : public KWChannel {};

} // namespace

TEST(KWChannelMetaTypes, EveryKindOfChannelIsAChannel) {
    const std::shared_ptr<KWChannel> channel = std::make_shared<KWChannel>();
    EXPECT_EQ(KWChannelFromVariant(QVariant::fromValue(channel)), channel);
    const auto constant = std::make_shared<KWConstantChannel>();
    EXPECT_EQ(KWChannelFromVariant(QVariant::fromValue(constant)), constant);
    const auto curve = std::make_shared<KWKeyFramedChannel>();
    EXPECT_EQ(KWChannelFromVariant(QVariant::fromValue(curve)), curve);
    const auto algebric = std::make_shared<KWAlgebricChannel>();
    EXPECT_EQ(KWChannelFromVariant(QVariant::fromValue(algebric)), algebric);
}

TEST(KWChannelMetaTypes, AHostsOwnKindIsAChannelOnceRegistered) {
    const auto own = std::make_shared<HostChannel>();
    EXPECT_EQ(KWChannelFromVariant(QVariant::fromValue(own)), nullptr);
    KWRegisterChannelMetaType<HostChannel>();
    KWRegisterChannelMetaType<HostChannel>();
    EXPECT_EQ(KWChannelFromVariant(QVariant::fromValue(own)), own);
}

TEST(KWChannelMetaTypes, AnObjectOfTheModelIsAChannelIfItIsOne) {
    const std::shared_ptr<KWObject> channel = std::make_shared<KWKeyFramedChannel>();
    EXPECT_EQ(KWChannelFromVariant(QVariant::fromValue(channel)), channel);
    const std::shared_ptr<KWObject> array = std::make_shared<KWChannelArray>();
    EXPECT_EQ(KWChannelFromVariant(QVariant::fromValue(array)), nullptr);
    EXPECT_EQ(KWChannelFromVariant(QVariant::fromValue(std::shared_ptr<KWObject>())), nullptr);
}

TEST(KWChannelMetaTypes, AnythingElseIsNoChannel) {
    EXPECT_EQ(KWChannelFromVariant(QVariant()), nullptr);
    EXPECT_EQ(KWChannelFromVariant(QVariant(3)), nullptr);
    EXPECT_EQ(KWChannelFromVariant(QVariant(QStringLiteral("channel"))), nullptr);
    EXPECT_EQ(KWChannelFromVariant(QVariant::fromValue(std::shared_ptr<KWChannel>())), nullptr);
    EXPECT_EQ(KWChannelFromVariant(QVariant::fromValue(std::make_shared<KWChannelArray>())),
              nullptr);
}
