#include "PropertyTestObjects.h"
#include "ViewTestSupport.h"

#include <KWBase/KWChannelView.h>
#include <KWBase/KWConstantChannel.h>
#include <KWFoundation/KWNotificationCenter.h>

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <functional>
#include <limits>
#include <memory>
#include <stdexcept>

namespace {

using Lines = std::vector<std::string>;

constexpr const char* warning = "You should invoke unbind: before binding again";

class CountingView : public KWChannelView {
  public:
    void setNeedsDisplay(bool needs) override {
        ++redisplays;
        KWChannelView::setNeedsDisplay(needs);
    }
    int redisplays = 0;
};

class Delegate final : public KWChannelViewDelegate {
  public:
    ~Delegate() override { resign(); }
    void selectionDidChange(const KWNotification& notification) override {
        ++count;
        name = notification.name();
        object = notification.object();
        if (also)
            also();
    }
    int count = 0;
    std::string name;
    const KWObject* object = nullptr;
    std::function<void()> also;
};

class KWChannelViewBindingsTest : public testing::Test {
  protected:
    KWChannelViewBindingsTest() { view->setDelegate(&delegate); }

    void bindChannel(QObject& object, std::string_view keyPath = "channel") {
        view->bindToObjectWithKeyPathOptions("channel", &object, keyPath);
    }
    void bindTime(QObject& object, std::string_view keyPath = "time") {
        view->bindToObjectWithKeyPathOptions("currentTime", &object, keyPath);
    }

    Delegate delegate;
    Player player;
    std::shared_ptr<KWKeyFramedChannel> curve = std::make_shared<KWKeyFramedChannel>("curve");
    std::shared_ptr<KWConstantChannel> constant = std::make_shared<KWConstantChannel>("constant");
    std::unique_ptr<CountingView> view = std::make_unique<CountingView>();
};

} // namespace

TEST_F(KWChannelViewBindingsTest, TwoAreExposedInThisOrder) {
    EXPECT_EQ(KWChannelView::exposedBindings(), (Lines{"channel", "currentTime"}));
}

TEST_F(KWChannelViewBindingsTest, BindingTheChannelTakesTheOneThatIsThere) {
    player.setChannel(curve);
    bindChannel(player);
    EXPECT_EQ(view->primaryChannel(), curve);
}

TEST_F(KWChannelViewBindingsTest, AnotherChannelInThePropertyIsThePrimaryOne) {
    bindChannel(player);
    EXPECT_EQ(view->primaryChannel(), nullptr);
    player.setChannel(curve);
    EXPECT_EQ(view->primaryChannel(), curve);
    player.setChannel(constant);
    EXPECT_EQ(view->primaryChannel(), constant);
    player.setChannel(nullptr);
    EXPECT_EQ(view->primaryChannel(), nullptr);
}

TEST_F(KWChannelViewBindingsTest, APropertyOfASubclassOfChannelShowsIt) {
    player.setCurve(curve);
    bindChannel(player, "curve");
    EXPECT_EQ(view->primaryChannel(), curve);
}

TEST_F(KWChannelViewBindingsTest, TheChannelMayStandBehindOtherObjects) {
    Player document;
    bindChannel(document, "next.channel");
    document.setNext(&player);
    EXPECT_EQ(view->primaryChannel(), nullptr);
    player.setChannel(curve);
    EXPECT_EQ(view->primaryChannel(), curve);
    document.setNext(nullptr);
    EXPECT_EQ(view->primaryChannel(), nullptr);
}

TEST_F(KWChannelViewBindingsTest,
       ASelectionThatIsNoChannelShowsAnEmptyViewAndClearsTheKeySelection) {
    bindChannel(player, "selection");
    for (const QVariant& selection :
         {QVariant(), QVariant::fromValue(nullptr), QVariant(QStringLiteral("several")),
          QVariant::fromValue<QObject*>(&player), QVariant::fromValue(std::shared_ptr<KWChannel>()),
          QVariant::fromValue(std::make_shared<KWChannelArray>())}) {
        player.setSelection(QVariant::fromValue(std::shared_ptr<KWChannel>(curve)));
        ASSERT_EQ(view->primaryChannel(), curve);
        view->setSelectedKeys({KWTime(1)});
        player.setSelection(selection);
        EXPECT_EQ(view->primaryChannel(), nullptr);
        EXPECT_TRUE(view->selectedKeys().empty());
    }
}

TEST_F(KWChannelViewBindingsTest, BindingToASelectionThatIsNoChannelClearsTheKeySelection) {
    view->setPrimaryChannel(curve);
    view->setSelectedKeys({KWTime(1)});
    player.setSelection(7);
    bindChannel(player, "selection");
    EXPECT_EQ(view->primaryChannel(), nullptr);
    EXPECT_TRUE(view->selectedKeys().empty());
}

TEST_F(KWChannelViewBindingsTest, RepublishingTheSameChannelClearsTheKeySelectionAndNotifiesAgain) {
    player.setChannel(curve);
    bindChannel(player);
    EXPECT_EQ(delegate.count, 1);
    view->setSelectedKeys({KWTime(1), KWTime(2)});
    view->redisplays = 0;
    player.setChannel(curve);
    EXPECT_TRUE(view->selectedKeys().empty());
    EXPECT_EQ(delegate.count, 2);
    EXPECT_EQ(delegate.name, "KWChannelKeySelectionChangedNotification");
    EXPECT_EQ(delegate.object, view.get());
    EXPECT_EQ(view->redisplays, 1);
    player.setChannel(curve);
    EXPECT_EQ(delegate.count, 3);
}

TEST_F(KWChannelViewBindingsTest, AChangeOfTheBoundTimeMovesTheTimeLineAndRedraws) {
    player.setTime(1.5);
    bindTime(player);
    EXPECT_EQ(view->currentTime(), 1.5f);
    view->redisplays = 0;
    player.setTime(2.25);
    EXPECT_EQ(view->currentTime(), 2.25f);
    EXPECT_EQ(view->redisplays, 1);
    player.setTime(2.25);
    EXPECT_EQ(view->redisplays, 2);
    EXPECT_EQ(delegate.count, 0);
}

TEST_F(KWChannelViewBindingsTest, AChangeOfTheChannelsValidityRedrawsOnly) {
    player.setChannel(curve);
    bindChannel(player);
    bindTime(player);
    view->setSelectedKeys({KWTime(1)});
    view->redisplays = 0;
    const int notices = delegate.count;
    curve->invalidate();
    EXPECT_EQ(view->redisplays, 1);
    curve->updateForTime(KWTime(1));
    EXPECT_EQ(view->redisplays, 2);
    EXPECT_EQ(view->selectedKeys(), std::vector<KWTime>{KWTime(1)});
    EXPECT_EQ(view->primaryChannel(), curve);
    EXPECT_EQ(view->currentTime(), 0.f);
    EXPECT_EQ(delegate.count, notices);
}

TEST_F(KWChannelViewBindingsTest, UnbindingTheCurrentTimeLeavesTheTimeLineWhereItWas) {
    bindTime(player);
    player.setTime(3);
    view->unbind("currentTime");
    EXPECT_EQ(view->currentTime(), 3.f);
    player.setTime(4);
    EXPECT_EQ(view->currentTime(), 3.f);
}

TEST_F(KWChannelViewBindingsTest, UnbindingTheChannelLeavesNone) {
    player.setChannel(curve);
    bindChannel(player);
    view->setSelectedKeys({KWTime(1)});
    view->unbind("channel");
    EXPECT_EQ(view->primaryChannel(), nullptr);
    EXPECT_TRUE(view->selectedKeys().empty());
    player.setChannel(constant);
    EXPECT_EQ(view->primaryChannel(), nullptr);
}

TEST_F(KWChannelViewBindingsTest, UnbindingWhatIsNotBoundIsHarmless) {
    view->setPrimaryChannel(curve);
    view->setCurrentTime(2);
    view->unbind("currentTime");
    view->unbind("channel");
    EXPECT_EQ(view->primaryChannel(), nullptr);
    EXPECT_EQ(view->currentTime(), 2.f);
    view->unbind("channel");
    EXPECT_EQ(delegate.count, 3);
}

TEST_F(KWChannelViewBindingsTest, OtherNamesAreIgnored) {
    view->setPrimaryChannel(curve);
    LogLines log;
    for (const char* name : {"", "value", "Channel", "channel ", "currenttime"}) {
        view->bindToObjectWithKeyPathOptions(name, &player, "time");
        view->bindToObjectWithKeyPathOptions(name, &player, "time");
        view->unbind(name);
    }
    player.setTime(5);
    EXPECT_EQ(view->primaryChannel(), curve);
    EXPECT_EQ(view->currentTime(), 0.f);
    EXPECT_EQ(log.lines, Lines());
}

TEST_F(KWChannelViewBindingsTest, ANullObjectIsIgnored) {
    view->setPrimaryChannel(curve);
    view->bindToObjectWithKeyPathOptions("channel", nullptr, "channel");
    EXPECT_EQ(view->primaryChannel(), curve);
}

TEST_F(KWChannelViewBindingsTest, TheOptionsAreIgnored) {
    player.setChannel(curve);
    view->bindToObjectWithKeyPathOptions("channel", &player, "channel",
                                         {{QStringLiteral("NSNullPlaceholder"), QVariant(3)}});
    EXPECT_EQ(view->primaryChannel(), curve);
}

TEST_F(KWChannelViewBindingsTest, BindingAgainWarnsAndGoesOn) {
    player.setChannel(curve);
    player.setTime(1);
    Player other;
    other.setChannel(constant);
    other.setTime(2);
    bindChannel(player);
    bindTime(player);
    LogLines log;
    bindChannel(other);
    EXPECT_EQ(log.lines, (Lines{warning}));
    bindTime(other);
    EXPECT_EQ(log.lines, (Lines{warning, warning}));
    EXPECT_EQ(view->primaryChannel(), constant);
    EXPECT_EQ(view->currentTime(), 2.f);
}

TEST_F(KWChannelViewBindingsTest, TheEarlierRegistrationStaysInPlace) {
    Player other;
    other.setChannel(constant);
    other.setTime(2);
    bindChannel(player);
    bindTime(player);
    LogLines log;
    bindChannel(other);
    bindTime(other);
    view->setSelectedKeys({KWTime(1)});
    const int notices = delegate.count;
    // The earlier container still tells; what is read is the later one.
    player.setChannel(curve);
    EXPECT_EQ(view->primaryChannel(), constant);
    EXPECT_TRUE(view->selectedKeys().empty());
    EXPECT_EQ(delegate.count, notices + 1);
    view->redisplays = 0;
    player.setTime(9);
    EXPECT_EQ(view->currentTime(), 2.f);
    EXPECT_EQ(view->redisplays, 1);
    // Unbinding ends the later one only, and then there is nothing to be read.
    view->unbind("channel");
    view->unbind("currentTime");
    player.setChannel(curve);
    EXPECT_EQ(view->primaryChannel(), nullptr);
    player.setTime(9);
    EXPECT_EQ(view->currentTime(), 0.f);
    view->redisplays = 0;
    other.setTime(7);
    EXPECT_EQ(view->redisplays, 0);
}

TEST_F(KWChannelViewBindingsTest, BindingAgainAfterUnbindingDoesNotWarn) {
    bindChannel(player);
    view->unbind("channel");
    LogLines log;
    player.setChannel(curve);
    bindChannel(player);
    EXPECT_EQ(view->primaryChannel(), curve);
    EXPECT_EQ(log.lines, Lines());
}

TEST_F(KWChannelViewBindingsTest, UnbindingADestroyedContainerIsSafe) {
    {
        Player gone;
        gone.setChannel(curve);
        gone.setTime(3);
        bindChannel(gone);
        bindTime(gone);
    }
    EXPECT_EQ(view->primaryChannel(), curve);
    view->unbind("channel");
    view->unbind("currentTime");
    EXPECT_EQ(view->primaryChannel(), nullptr);
    EXPECT_EQ(view->currentTime(), 3.f);
}

TEST_F(KWChannelViewBindingsTest, BindingAgainAfterTheContainerIsGoneDoesNotWarn) {
    {
        Player gone;
        bindChannel(gone);
    }
    LogLines log;
    player.setChannel(curve);
    bindChannel(player);
    EXPECT_EQ(view->primaryChannel(), curve);
    EXPECT_EQ(log.lines, Lines());
}

TEST_F(KWChannelViewBindingsTest, AViewMayGoWithoutBeingUnbound) {
    player.setChannel(curve);
    bindChannel(player);
    bindTime(player, "self.time");
    view.reset();
    curve->invalidate();
    player.setChannel(constant);
    player.setTime(2);
    Q_EMIT player.bothChanged();
    EXPECT_EQ(curve.use_count(), 1);
}

TEST_F(KWChannelViewBindingsTest, AViewMayGoWhenItsDelegateIsTold) {
    bindChannel(player);
    delegate.also = [this] { view.reset(); };
    player.setChannel(curve);
    EXPECT_EQ(view, nullptr);
    curve->invalidate();
}

TEST_F(KWChannelViewBindingsTest, AViewMayGoWhenUnbindingTellsItsDelegate) {
    bindChannel(player);
    delegate.also = [this] { view.reset(); };
    view->unbind("channel");
    EXPECT_EQ(view, nullptr);
}

TEST_F(KWChannelViewBindingsTest, AViewMayGoWhenItSignalsItsSelection) {
    view->setPrimaryChannel(curve);
    view->setSelectedKeys({KWTime(1)});
    QObject::connect(view.get(), &KWChannelView::selectedKeysChanged, [this] { view.reset(); });
    view->setPrimaryChannel(nullptr);
    EXPECT_EQ(view, nullptr);
    EXPECT_EQ(delegate.count, 1);
}

TEST_F(KWChannelViewBindingsTest, TheDelegateMayUnbindWhenItIsTold) {
    bindChannel(player);
    delegate.also = [this] {
        if (delegate.count == 2)
            view->unbind("channel");
    };
    player.setChannel(curve);
    EXPECT_EQ(view->primaryChannel(), nullptr);
    EXPECT_EQ(delegate.count, 3);
    player.setChannel(constant);
    EXPECT_EQ(view->primaryChannel(), nullptr);
}

TEST_F(KWChannelViewBindingsTest, ADelegateThatThrowsIsLogged) {
    bindChannel(player);
    delegate.also = [] { throw std::runtime_error("told"); };
    LogLines log;
    player.setChannel(curve);
    EXPECT_EQ(log.lines, (Lines{"An observer of the property \"channel\" has thrown: told"}));
    EXPECT_EQ(view->primaryChannel(), curve);
}

TEST_F(KWChannelViewBindingsTest, SettingAChannelIsFinishedAlthoughTheDelegateThrows) {
    view->setPrimaryChannel(constant);
    view->setSelectedKeys({KWTime(1)});
    QSignalSpy changes(view.get(), &KWChannelView::primaryChannelChanged);
    view->redisplays = 0;
    delegate.also = [] { throw std::runtime_error("told"); };
    EXPECT_THROW(view->setPrimaryChannel(curve), std::runtime_error);
    EXPECT_EQ(view->primaryChannel(), curve);
    EXPECT_TRUE(view->selectedKeys().empty());
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(view->redisplays, 1);
    curve->invalidate();
    EXPECT_EQ(view->redisplays, 2);
}

TEST_F(KWChannelViewBindingsTest, UnbindingIsFinishedAlthoughTheDelegateThrows) {
    player.setChannel(curve);
    bindChannel(player);
    delegate.also = [] { throw std::runtime_error("told"); };
    EXPECT_THROW(view->unbind("channel"), std::runtime_error);
    EXPECT_EQ(view->primaryChannel(), nullptr);
    player.setChannel(constant);
    EXPECT_EQ(view->primaryChannel(), nullptr);
}

TEST_F(KWChannelViewBindingsTest, NothingIsWrittenBack) {
    player.setChannel(curve);
    player.setTime(1);
    bindChannel(player);
    bindTime(player);
    view->setPrimaryChannel(constant);
    view->setCurrentTime(8);
    EXPECT_EQ(player.channel(), curve);
    EXPECT_EQ(player.time(), 1);
}

TEST_F(KWChannelViewBindingsTest, ATimeThatIsNoNumberIsZero) {
    bindTime(player, "selection");
    for (const QVariant& value :
         {QVariant(), QVariant(QStringLiteral("soon")), QVariant::fromValue<QObject*>(nullptr)}) {
        view->setCurrentTime(1);
        player.setSelection(value);
        EXPECT_EQ(view->currentTime(), 0.f);
    }
    player.setSelection(4);
    EXPECT_EQ(view->currentTime(), 4.f);
    player.setSelection(QStringLiteral("2.5"));
    EXPECT_EQ(view->currentTime(), 2.5f);
    player.setSelection(1e300);
    EXPECT_EQ(view->currentTime(), std::numeric_limits<float>::infinity());
    player.setSelection(0.1);
    EXPECT_EQ(view->currentTime(), 0.1f);
}

TEST_F(KWChannelViewBindingsTest, OnlyTheContextOfANoticeCounts) {
    player.setChannel(curve);
    bindChannel(player);
    const int notices = delegate.count;
    view->redisplays = 0;
    const char unknown = 0;
    view->observeValueForKeyPathOfObjectChangeContext("channel", curve.get(), {}, &unknown);
    view->observeValueForKeyPathOfObjectChangeContext("valid", curve.get(), {}, nullptr);
    EXPECT_EQ(delegate.count, notices);
    EXPECT_EQ(view->redisplays, 0);
}

TEST_F(KWChannelViewBindingsTest, ANewPrimaryChannelIsObservedInPlaceOfTheOld) {
    view->setPrimaryChannel(curve);
    view->setPrimaryChannel(constant);
    EXPECT_EQ(curve.use_count(), 1);
    view->redisplays = 0;
    curve->invalidate();
    EXPECT_EQ(view->redisplays, 0);
    constant->invalidate();
    EXPECT_EQ(view->redisplays, 1);
    view->setPrimaryChannel(constant);
    view->redisplays = 0;
    constant->invalidate();
    EXPECT_EQ(view->redisplays, 1);
}

TEST_F(KWChannelViewBindingsTest, ThePrimaryChannelMayBeSetToItself) {
    view->setPrimaryChannel(curve);
    view->setPrimaryChannel(view->primaryChannel());
    EXPECT_EQ(view->primaryChannel(), curve);
    EXPECT_EQ(delegate.count, 2);
}

TEST_F(KWChannelViewBindingsTest, AnotherPrimaryChannelIsSignalled) {
    QSignalSpy signal(view.get(), &KWChannelView::primaryChannelChanged);
    view->setPrimaryChannel(curve);
    view->setPrimaryChannel(curve);
    EXPECT_EQ(signal.count(), 1);
    view->setPrimaryChannel(nullptr);
    EXPECT_EQ(signal.count(), 2);
}

TEST_F(KWChannelViewBindingsTest, ObservingByHandRedrawsUntilStopped) {
    view->startObservingChannel(nullptr);
    view->stopObservingChannel(nullptr);
    view->startObservingChannel(constant);
    view->redisplays = 0;
    constant->invalidate();
    EXPECT_EQ(view->redisplays, 1);
    view->stopObservingChannel(constant);
    view->stopObservingChannel(constant);
    constant->invalidate();
    EXPECT_EQ(view->redisplays, 1);
}

TEST_F(KWChannelViewBindingsTest, AddingTheSameSecondaryChannelTwiceKeepsOneEntry) {
    view->addSecondaryChannel(curve);
    view->addSecondaryChannel(constant);
    view->addSecondaryChannel(curve);
    EXPECT_EQ(view->secondaryChannels(), (KWChannelList{curve, constant}));
    EXPECT_TRUE(view->isSecondaryChannel(curve));
}

TEST_F(KWChannelViewBindingsTest, SecondaryChannelsAreRemovedOneByOneOrAll) {
    view->addSecondaryChannel(curve);
    view->addSecondaryChannel(constant);
    view->removeSecondaryChannel(view->secondaryChannels().front());
    EXPECT_EQ(view->secondaryChannels(), KWChannelList{constant});
    EXPECT_FALSE(view->isSecondaryChannel(curve));
    view->removeSecondaryChannel(curve);
    view->removeSecondaryChannel(nullptr);
    EXPECT_EQ(view->secondaryChannels(), KWChannelList{constant});
    view->removeAllSecondaryChannels();
    EXPECT_TRUE(view->secondaryChannels().empty());
    EXPECT_EQ(constant.use_count(), 1);
}

TEST_F(KWChannelViewBindingsTest, ANullSecondaryChannelIsNotAdded) {
    view->addSecondaryChannel(nullptr);
    EXPECT_TRUE(view->secondaryChannels().empty());
    EXPECT_FALSE(view->isSecondaryChannel(nullptr));
}

TEST_F(KWChannelViewBindingsTest, SecondaryChannelsNeitherRedrawNorAreObserved) {
    view->redisplays = 0;
    view->addSecondaryChannel(curve);
    view->addSecondaryChannel(constant);
    curve->invalidate();
    view->removeSecondaryChannel(constant);
    view->removeAllSecondaryChannels();
    EXPECT_EQ(view->redisplays, 0);
}
